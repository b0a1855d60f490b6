// Prints docs/protocol.md.

#include <iostream>

#include "tools/reference/protocol_reference.h"

int main() { std::cout << zel::protocolReference(); }
