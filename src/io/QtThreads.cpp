#include "PooledThreads.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <thread>

#ifdef __linux__
#include <dirent.h>
#endif

namespace ferrule {

namespace {

#ifdef __linux__
// Whether a thread of this process still carries the name Qt gives the pool's threads.
bool pooledThreadLeft() {
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
            if (read && std::strncmp(name, "Thread (pooled)", 15) == 0) {
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

void waitForPooledThreadsToEnd() {
#ifdef __linux__
    using namespace std::chrono;
    const auto giveUp = steady_clock::now() + seconds(1);
    while (pooledThreadLeft() && steady_clock::now() < giveUp)
        std::this_thread::sleep_for(milliseconds(1));
#endif
}

} // namespace ferrule
