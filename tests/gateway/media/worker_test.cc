#include "gateway/media/worker.h"

#include <gmock/gmock.h>

#include <semaphore>
#include <vector>

namespace zel::gateway {
namespace {

TEST(WorkerTest, DoesItsTasksInOrder) {
  std::vector<int> done;
  std::binary_semaphore last{0};
  Worker worker;
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(worker.post([&, i] {
      done.push_back(i);
      if (i == 2) last.release();
    }));
  }
  last.acquire();
  EXPECT_THAT(done, testing::ElementsAre(0, 1, 2));
}

TEST(WorkerTest, RefusesMoreThanItsBound) {
  std::binary_semaphore begun{0}, end{0};
  Worker worker;
  ASSERT_TRUE(worker.post([&] {
    begun.release();
    end.acquire();
  }));
  begun.acquire();
  for (std::size_t i = 0; i < Worker::kMostWaiting; ++i) EXPECT_TRUE(worker.post([] {}));
  EXPECT_FALSE(worker.post([] {}));
  end.release();
}

TEST(WorkerTest, DropsWhatWaitsWhenItIsStopped) {
  const auto kept = std::make_shared<int>();
  std::binary_semaphore begun{0}, end{0};
  Worker worker;
  worker.post([&] {
    begun.release();
    end.acquire();
  });
  begun.acquire();
  worker.post([kept] {});
  std::thread stopping([&] { worker.stop(); });
  while (kept.use_count() > 1) std::this_thread::yield();
  end.release();
  stopping.join();
  EXPECT_FALSE(worker.post([] {}));
}

}  // namespace
}  // namespace zel::gateway
