#include "tools/InOrder.h"

#include "base/Connection.h"

#include <algorithm>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace tools {
namespace {

constexpr std::size_t kAheadPerJob = 16; // lets the other jobs continue during a slow answer

/// The waiting reports, shared by the jobs and the thread that takes the reports.
class Reports {
  public:
    Reports(std::size_t count, std::size_t ahead) : count_(count), ahead_(ahead) {}

    /// Waits until a further reference may be looked up.
    /// @return its index, or `count` after the last one.
    std::size_t next() {
        std::unique_lock lock(mutex_);
        mayLook_.wait(lock, [this] { return next_ == count_ || next_ < taken_ + ahead_; });
        return next_ == count_ ? count_ : next_++;
    }

    void add(std::size_t index, Report report) {
        const std::lock_guard lock(mutex_);
        ready_.emplace(index, std::move(report));
        added_.notify_one();
    }

    /// Waits for the report of `index`. Each call must pass the next index.
    Report take(std::size_t index) {
        std::unique_lock lock(mutex_);
        added_.wait(lock, [&] { return ready_.contains(index); });
        taken_ = index + 1;
        mayLook_.notify_one();
        return std::move(ready_.extract(index).mapped());
    }

    /// Makes the jobs end.
    void stop() {
        const std::lock_guard lock(mutex_);
        next_ = count_;
        mayLook_.notify_all();
    }

  private:
    const std::size_t count_;
    const std::size_t ahead_;
    std::mutex mutex_;
    std::condition_variable mayLook_; // for the jobs
    std::condition_variable added_;   // for the thread that takes
    std::size_t next_ = 0;
    std::size_t taken_ = 0;
    std::map<std::size_t, Report> ready_;
};

/// The threads of the jobs. The destructor ends and joins them, so an exception does as well.
class Jobs {
  public:
    explicit Jobs(Reports& reports) : reports_(reports) {}
    Jobs(const Jobs&) = delete;
    Jobs& operator=(const Jobs&) = delete;
    ~Jobs() {
        reports_.stop();
        for (auto& thread : threads_) {
            thread.join();
        }
    }

    template <class Job>
    void start(Job job) {
        threads_.emplace_back(std::move(job));
    }

  private:
    Reports& reports_;
    std::vector<std::thread> threads_;
};

/// A fetcher with its own connection, for one thread.
class KeptConnection {
  public:
    KeptConnection() : connection_(base::Connection::Reuse::Yes) {}
    base::Fetched operator()(const base::URL& url, const base::FetchLimits& limits) {
        return connection_.fetch(url, limits);
    }

  private:
    base::Connection connection_;
};

} // namespace

void lookUpInOrder(std::size_t count, std::size_t jobs,
                   const std::function<Report(std::size_t index, const store::Fetcher&)>& look,
                   const std::function<void(std::size_t index, const Report&)>& take) {
    if (jobs <= 1) {
        KeptConnection connection;
        for (std::size_t index = 0; index < count; ++index) {
            take(index, look(index, std::ref(connection)));
        }
        return;
    }
    Reports reports(count, jobs * kAheadPerJob);
    Jobs running(reports);
    for (std::size_t job = 0; job < std::min(jobs, count); ++job) {
        running.start([&] {
            KeptConnection connection;
            for (auto index = reports.next(); index < count; index = reports.next()) {
                reports.add(index, look(index, std::ref(connection)));
            }
        });
    }
    for (std::size_t index = 0; index < count; ++index) {
        take(index, reports.take(index));
    }
}

} // namespace tools
