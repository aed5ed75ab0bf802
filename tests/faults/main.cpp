#include "checks.h"

#include <cstdio>
#include <cstdlib>

// usage: tavrin-store-faults CHECK DIRECTORY [NUMBER]; prints one line of the table, or several.
int main(int argc, char** argv) {
    using namespace tavrin::faults;
    if (argc < 3) {
        std::fputs("usage: tavrin-store-faults CHECK DIRECTORY [NUMBER]\n", stderr);
        return 2;
    }
    const std::string_view check = argv[1];
    const std::filesystem::path directory = argv[2];
    std::vector<Row> rows;
    if (check == "prepare") {
        tavrin::PosixFileSystem files;
        return MarkedStore(files, directory).create() ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    if (check == "kill")
        rows.push_back(killedSaves(directory, argc > 3 ? std::strtoull(argv[3], nullptr, 10) : 2000));
    if (check == "full")
        rows.push_back(fullDisk(directory));
    if (check == "read-only")
        rows.push_back(readOnlyDirectory(directory));
    if (check == "failing") {
        for (const auto* step :
             {"mkdir", "lock", "readlink", "write", "fsync", "rename", "fsync directory", "read"})
            for (const bool isHalfDone : {false, true})
                if (!isHalfDone || step == std::string_view("write") || step == std::string_view("fsync"))
                    rows.push_back(failingStep(directory, step, isHalfDone));
    }
    if (check == "refused")
        rows.push_back(refusedFiles(directory));
    bool isClean = !rows.empty();
    for (const auto& row : rows) {
        print(row);
        isClean = isClean && row.problem.empty();
    }
    return isClean ? EXIT_SUCCESS : EXIT_FAILURE;
}
