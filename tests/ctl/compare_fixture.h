// Two files that come from one, for the commands of version control.
#pragma once

#include "ctl/ctl_fixture.h"

namespace zentaq {

class ZentaqctlVersions : public Zentaqctl {
 protected:
    ZentaqctlVersions() {
        // The same name in all: the folders tell them apart.
        for (const std::string& path : {base, mine, yours}) {
            fs::create_directory(fs::path(path).parent_path());
            fs::copy_file(file, path);
            run("set " + inQuotes(path) + " KNK_MIN 40");
        }
    }
    Outcome change(const std::string& path, const std::string& what) {
        return run("set " + inQuotes(path) + " " + what);
    }
    Outcome compare(const std::string& first, const std::string& second, const std::string& rest = {}) {
        return run("diff " + inQuotes(first) + " " + inQuotes(second) + " " + rest);
    }
    Outcome merge(const std::string& rest) {
        return run("merge " + inQuotes(base) + " " + inQuotes(mine) + " " + inQuotes(yours) + " -o " + rest);
    }

    std::string base = folder.file("base/tune.ZQ4OA");
    std::string mine = folder.file("mine/tune.ZQ4OA");
    std::string yours = folder.file("yours/tune.ZQ4OA");
    std::string merged = folder.file("merged.ZQ4OA");
};

}  // namespace zentaq
