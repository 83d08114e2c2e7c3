#include "app/Program.h"

int main(int argc, char** argv) {
    return VorNode::runProgram(argc, argv);
}
