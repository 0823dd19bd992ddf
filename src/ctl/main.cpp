// owbctl: the administrator's and tester's tool. No display needed.
#include <unistd.h>

#include <iostream>

#include "ctl/command.h"

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    owb::ctl::Streams io{std::cin, std::cout, std::cerr, isatty(STDERR_FILENO) != 0,
                         isatty(STDIN_FILENO) && isatty(STDOUT_FILENO)};
    return owb::ctl::runOwbctl({argv + 1, argv + argc}, io);
}
