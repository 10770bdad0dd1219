#pragma once

namespace ferrule {

// Qt's raster painting spreads large fills over the global thread pool. When the application
// object goes, the pool tells its threads to end and waits until they say they have, but it
// does not join them: a thread may still be releasing its per-thread data when main returns.
// A process that ends in that moment looks to a leak checker as if it had lost that data.
// Called after the application object is gone, this waits (a few milliseconds at most, one
// second at the very most) until no pooled thread is left, so that the process ends clean.
void waitForPooledThreadsToEnd();

} // namespace ferrule
