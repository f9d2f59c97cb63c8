// The pieces of code in docs/hosting.md as one program. Their lines keep their numbers.
#include "HostingDeclarations.inc"

int main() {
#include "HostingMain.inc"
}
