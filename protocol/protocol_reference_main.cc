// Prints docs/protocol.md.

#include <iostream>

#include "protocol/protocol_reference.h"

int main() { std::cout << zel::protocolReference(); }
