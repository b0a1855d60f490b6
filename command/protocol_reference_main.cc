// Prints docs/protocol.md.

#include <iostream>

#include "command/protocol_reference.h"

int main() { std::cout << zel::protocolReference(); }
