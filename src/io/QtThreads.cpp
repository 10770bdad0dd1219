#include "QtThreads.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

#ifdef __linux__
#include <dirent.h>
#endif

namespace ferrule {

namespace {

#ifdef __linux__
// Whether a thread of this process still carries a name Qt gives the threads it does not join.
bool qtThreadLeft() {
    DIR* tasks = opendir("/proc/self/task");
    if (!tasks) return false;
    bool found = false;
    while (const dirent* task = readdir(tasks)) {
        if (task->d_name[0] == '.') continue;
        char path[300];
        std::snprintf(path, sizeof path, "/proc/self/task/%s/comm", task->d_name);
        if (std::FILE* comm = std::fopen(path, "r")) {
            char name[32] = {};
            const bool read = std::fgets(name, sizeof name, comm) != nullptr;
            std::fclose(comm);
            if (read && (std::strncmp(name, "Thread (pooled)", 15) == 0 ||
                         std::strncmp(name, "QDBusConnection", 15) == 0)) {
                found = true;
                break;
            }
        }
    }
    closedir(tasks);
    return found;
}
#endif

} // namespace

void waitForQtThreadsToEnd() {
#ifdef __linux__
    using namespace std::chrono;
    const auto giveUp = steady_clock::now() + seconds(1);
    while (qtThreadLeft() && steady_clock::now() < giveUp)
        std::this_thread::sleep_for(milliseconds(1));
#endif
}

void waitForQtThreadsAtExit() {
    // Handlers run in the reverse order of their registration: one registered before Qt makes
    // its globals runs after they are destroyed, and the leak checker's, registered when the
    // process started, runs after it.
    std::atexit(&waitForQtThreadsToEnd);
}

} // namespace ferrule
