// Memory of the whole pass (configuration, registers, month days) on a large company.
//
//   bench_memory [EMPLOYEES [MONTHS]]
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <iostream>
#include <sstream>

#include "bench.h"
#include "ctl/command.h"

namespace {

int owbctl(std::vector<std::string> arguments) {
    std::istringstream nothing;
    owb::ctl::Streams io{nothing, std::cout, std::cerr};
    return owb::ctl::runOwbctl(std::move(arguments), io);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string employees = argc > 1 ? argv[1] : "20000", months = argc > 2 ? argv[2] : "2";
    const owb::bench::Folder folder;
    const std::string path = folder.file("company.owb");
    // The company is made by another process: only the pass counts.
    const pid_t child = fork();
    if (child == 0) _exit(owbctl({"sample", path, "--employees", employees, "--months", months}));
    int status = 0;
    waitpid(child, &status, 0);
    if (status != 0) return 1;
    const double time = owb::bench::seconds([&] { status = owbctl({"process", path}); });
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%s employees, %s months: %.1f s, peak %.0f MB (limit 1024 MB)\n",
                employees.c_str(), months.c_str(), time, usage.ru_maxrss / 1024.0);
    return status != 0 || usage.ru_maxrss > 1024 * 1024;
}
