#pragma once

namespace ferrule {

// Qt ends some of its threads without joining them: the raster painter's pool when the
// application object goes, the D-Bus connection thread (which the accessibility bridge and the
// platform theme start) when Qt's own globals are destroyed after main. Such a thread may still
// be releasing its per-thread data when the process ends, and a leak checker then reports that
// data as lost, by chance. These wait (a few milliseconds at most, one second at the very most)
// until no such thread is left, so that the process ends clean.

// Call after the application object is gone.
void waitForQtThreadsToEnd();
// Call first thing in main: the same wait then also runs at exit, after Qt's globals are gone
// and before a leak checker looks.
void waitForQtThreadsAtExit();

} // namespace ferrule
