#include "platform/BackgroundQueue.h"

#include <deque>
#include <mutex>
#include <utility>
#include <vector>

namespace corvanel {

struct BackgroundQueue::Shared {
    struct Job {
        MainExecutor::Work work;
        MainExecutor::Work done;
    };

    // On the background thread: runs jobs until none is left; the `done`s go into `finished`.
    void drain(std::vector<MainExecutor::Work>& finished) {
        for (;;) {
            Job job;
            {
                std::lock_guard lock(mutex);
                if (jobs.empty()) {
                    draining = false;
                    return;
                }
                job = std::move(jobs.front());
                jobs.pop_front();
            }
            job.work();
            // What the work holds goes here, on this thread, not with the `done` on the main one.
            job.work = nullptr;
            if (job.done) finished.push_back(std::move(job.done));
        }
    }

    std::mutex mutex;
    std::deque<Job> jobs;
    bool draining = false;
};

BackgroundQueue::BackgroundQueue(std::shared_ptr<MainExecutor> executor)
    : executor_(std::move(executor)), shared_(std::make_shared<Shared>()) {}

void BackgroundQueue::run(MainExecutor::Work work, MainExecutor::Work done) {
    {
        std::lock_guard lock(shared_->mutex);
        shared_->jobs.push_back({std::move(work), std::move(done)});
        if (shared_->draining) return;
        shared_->draining = true;
    }
    auto finished = std::make_shared<std::vector<MainExecutor::Work>>();
    executor_->runInBackground([shared = shared_, finished] { shared->drain(*finished); },
                               [finished] {
                                   for (const MainExecutor::Work& finish : *finished)
                                       finish();
                               },
                               BackgroundPriority::userInitiated);
}

}  // namespace corvanel
