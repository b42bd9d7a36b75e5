// A host that calls the input module from eight threads at once. ThreadSanitizer (the preset `threads`)
// watches every access; other builds still compare the frames.

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <barrier>
#include <cstddef>
#include <deque>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "stress/threaded_host.h"
#include "support/made_texture.h"
#include "support/temporary_folder.h"
#include "texture/value/texture_file.h"

namespace {

constexpr int kThreads = 8;
constexpr int kDraws = 10000;
constexpr int kDrawsOfAThread = kDraws / kThreads;

struct Picture {
    const char* name;
    std::int32_t width_px;
    std::int32_t height_px;
    std::int32_t mode;
    int alphas;
};

constexpr Picture kPictures[] = {
    {"rgb.txl", 23, 17, Texture::kRgb, 0},     {"rgb_alpha.txl", 31, 9, Texture::kRgb, 1},
    {"grey.txl", 16, 16, Texture::kGrey, 0},   {"grey_three_alphas.txl", 12, 25, Texture::kGrey, 3},
    {"one_pixel.txl", 1, 1, Texture::kRgb, 2},
};

// A frame about as large as the image, a smaller one, a larger one, and one without pixels.
constexpr FrameGeometry kGeometries[] = {
    {31, 25, 0, false},
    {8, 5, 12, false},
    {40, 30, 4, true},
    {0, 0, 0, false},
};

/// Runs `work(thread)` on every thread. All threads start at the same moment.
template <class Work>
void on_all_threads(const Work& work) {
    std::barrier start(kThreads);
    std::vector<std::jthread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&start, &work, i] {
            start.arrive_and_wait();
            work(i);
        });
    }
}

class BundleThreads : public testing::TestWithParam<HostGeneration> {
  protected:
    BundleThreads() {
        for (const Picture& picture : kPictures) {
            const std::string path = folder_.path(picture.name);
            EXPECT_FALSE(write_texture(
                path, made_texture(picture.width_px, picture.height_px, picture.mode, picture.alphas)));
            const ThreadedHost::Item item(host_, path);
            EXPECT_EQ(item.code(), kHostErrorNone) << picture.name;
            EXPECT_EQ(item.width_px(), picture.width_px);
            std::vector<DrawnFrame>& frames = serial_.emplace_back();
            for (const FrameGeometry& geometry : kGeometries) {
                frames.push_back(item.draw(geometry));
            }
            paths_.push_back(path);
        }
        // All images differ; otherwise a thread that draws another's would go unnoticed.
        for (std::size_t i = 1; i < serial_.size(); ++i) {
            EXPECT_NE(serial_[0][0], serial_[i][0]);
        }
        broken_ = folder_.write("broken.txl", "AVXRTexa and no more");
    }
    ~BundleThreads() override {
        EXPECT_EQ(host_.misuses(), 0);
        EXPECT_EQ(host_.handles_lent(), handles_deliberately_kept_);
        EXPECT_EQ(host_.suites_lent(), suites_kept_by_the_entry_point_);
    }
    BundleThreads(const BundleThreads&) = delete;
    BundleThreads& operator=(const BundleThreads&) = delete;

    /// Draws an image into a frame, both chosen by `random`, and compares the result with that of one thread.
    /// `items` holds one item for each of kPictures.
    template <class Items>
    bool draws_like_alone(const Items& items, std::mt19937& random) const {
        const std::size_t picture = random() % std::size(kPictures);
        const std::size_t geometry = random() % std::size(kGeometries);
        return items[picture].draw(kGeometries[geometry]) == serial_[picture][geometry];
    }

    TemporaryFolder folder_;
    ThreadedHost host_{VXR_BUNDLE_PATH, GetParam()};
    long suites_kept_by_the_entry_point_ = host_.suites_lent();
    std::vector<std::string> paths_;
    std::vector<std::vector<DrawnFrame>> serial_;  ///< by picture, by geometry
    std::string broken_;
    long handles_deliberately_kept_ = 0;
};

TEST_P(BundleThreads, DrawOneItemAtTheSameTime) {
    const ThreadedHost::Item item(host_, paths_[1]);
    std::atomic<int> equal{0};
    on_all_threads([&](int thread) {
        std::mt19937 random(static_cast<unsigned>(thread));
        for (int i = 0; i < kDrawsOfAThread; ++i) {
            const std::size_t geometry = random() % std::size(kGeometries);
            equal += item.draw(kGeometries[geometry]) == serial_[1][geometry] ? 1 : 0;
        }
    });
    EXPECT_EQ(equal, kDraws);
}

TEST_P(BundleThreads, OpenDrawAndDisposeOfDifferentItemsAtTheSameTime) {
    std::deque<ThreadedHost::Item> shared;  // drawn by every thread, while each opens and closes its own
    for (const std::string& path : paths_) {
        shared.emplace_back(host_, path);
    }
    constexpr int kRounds = 25;
    constexpr int kDrawsOfARound = kDrawsOfAThread / kRounds;
    static_assert(kRounds * kDrawsOfARound == kDrawsOfAThread);
    std::atomic<int> equal{0};
    std::atomic<int> refused{0};
    on_all_threads([&](int thread) {
        std::mt19937 random(static_cast<unsigned>(thread));
        for (int round = 0; round < kRounds; ++round) {
            std::deque<ThreadedHost::Item> own;
            for (const std::string& path : paths_) {
                own.emplace_back(host_, path);
            }
            for (int i = 0; i < kDrawsOfARound; ++i) {
                equal += draws_like_alone(i % 2 == 0 ? own : shared, random) ? 1 : 0;
            }
            refused += ThreadedHost::Item(host_, broken_).code() == kHostErrorParameter ? 1 : 0;
        }
    });
    EXPECT_EQ(equal, kDraws);
    EXPECT_EQ(refused, kThreads * kRounds);
    // The reader and the callback around it each report a refused file, and the host keeps the handle that
    // was made for it: the module deliberately attaches handles only to footage that it could read.
    // The bridge keeps reports of other threads until the next callback on the main thread, each text once.
    shared.clear();
    EXPECT_EQ(host_.reports(), GetParam() == HostGeneration::classic ? 2L * refused : 1L);
    handles_deliberately_kept_ = refused;
}

// Classic hosts draw only items that they have opened.
using CurrentBundleThreads = BundleThreads;

// Copies of a project, whose items have lost their options: the bridge loads each file once for all of them.
TEST_P(CurrentBundleThreads, DrawReopenedItemsAtTheSameTime) {
    std::atomic<int> equal{0};
    std::atomic<int> refused{0};
    on_all_threads([&](int thread) {
        std::mt19937 random(static_cast<unsigned>(thread));
        std::deque<ThreadedHost::Item> copies;
        for (const std::string& path : paths_) {
            copies.emplace_back(host_, path, ThreadedHost::Item::Reopened());
        }
        const ThreadedHost::Item broken(host_, broken_, ThreadedHost::Item::Reopened());
        for (int i = 0; i < kDrawsOfAThread; ++i) {
            equal += draws_like_alone(copies, random) ? 1 : 0;
            if (i % 50 == 0) {
                refused += broken.draw(kGeometries[0]).code == kHostErrorParameter ? 1 : 0;
            }
        }
    });
    EXPECT_EQ(equal, kDraws);
    EXPECT_EQ(refused, kThreads * kDrawsOfAThread / 50);
    EXPECT_EQ(host_.reports(), 0) << "only the main thread may report";
}

std::string generation_name(const testing::TestParamInfo<HostGeneration>& generation) {
    return generation.param == HostGeneration::classic ? "classic" : "current";
}

INSTANTIATE_TEST_SUITE_P(Hosts, BundleThreads,
                         testing::Values(HostGeneration::classic, HostGeneration::current), generation_name);
INSTANTIATE_TEST_SUITE_P(Hosts, CurrentBundleThreads, testing::Values(HostGeneration::current),
                         generation_name);

}  // namespace
