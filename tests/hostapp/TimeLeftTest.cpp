// The time left of a long exchange with the device, over random runs: at a steady pace it is
// the real time left, and it is never below the wire time still to go.

#include "TimeLeft.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

using namespace ferrule;

TEST(TimeLeft, AtASteadyPaceIsTheRealTimeLeftAndNeverBelowTheWireTimeLeft) {
    std::mt19937 random(23);
    for (int run = 0; run < 300; ++run) {
        const int n = std::uniform_int_distribution<int>(1, 200)(random);
        std::vector<double> wire(std::size_t(n), 0.0);
        for (double& w : wire)
            w = std::uniform_real_distribution<double>(0.5, 100.0)(random);
        // What each exchange costs beyond its wire time: the device, the MIDI system's cycles.
        const double extra = run % 4 == 0 ? 0.0 : std::uniform_real_distribution(0.0, 50.0)(random);
        double doneWire = 0, elapsed = 0, leftWire = 0;
        for (double w : wire)
            leftWire += w;
        for (int k = 0; k <= n; ++k) {
            TimeLeft t{doneWire, k, elapsed, leftWire, n - k};
            const double real = leftWire + (k > 0 ? extra * (n - k) : 0.0);
            EXPECT_NEAR(double(t.ms()), real, 1.0) << "run " << run << ", " << k << " of " << n;
            // However the time went so far (even faster than the wire, as a clock's step can
            // make it seem), what is left still has to cross the wire.
            t.elapsedMs = std::uniform_real_distribution<double>(0.0, 3.0 * elapsed + 1.0)(random);
            EXPECT_GE(double(t.ms()) + 0.5, leftWire) << "run " << run << ", " << k << " of " << n;
            if (k == n) {
                EXPECT_EQ(t.ms(), 0);
            } else {
                doneWire += wire[std::size_t(k)];
                leftWire -= wire[std::size_t(k)];
                elapsed += wire[std::size_t(k)] + extra;
            }
        }
    }
}
