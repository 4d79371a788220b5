// zentaq-guide GUIDE_DIR OUT_DIR: makes the pages of the user guide and their index, at build time.
#include <exception>
#include <iostream>

#include "guide_maker.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: zentaq-guide GUIDE_DIR OUT_DIR\n";
        return 2;
    }
    try {
        zentaq::makeGuide(argv[1], argv[2]);
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
    return 0;
}
