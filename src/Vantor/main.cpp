#include "Vantor/App/Program.h"

int main(int argc, char **argv) {
    return vantor::runProgram(argc, argv);
}
