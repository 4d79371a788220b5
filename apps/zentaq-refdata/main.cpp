// zentaq-refdata SEEDS_DIR OUT.pak: makes the reference database from the seed tables, at build time.
#include <exception>
#include <iostream>

#include "refdata/seed_builder.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: zentaq-refdata SEEDS_DIR OUT.pak\n";
        return 2;
    }
    try {
        zentaq::refdata::buildDatabase(argv[1], argv[2]);
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
    return 0;
}
