// The desktop program's entry: everything it does lives in the shell.
#include "shell/desktopshellui.h"

int main(int argc, char** argv) { return tessarin::RunDesktopProgram(argc, argv); }
