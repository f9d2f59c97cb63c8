// The pieces of code in docs/embedding.md as one program. Their lines keep their numbers.
#include "EmbeddingDeclarations.inc"

int main() {
#include "EmbeddingMain.inc"
}
