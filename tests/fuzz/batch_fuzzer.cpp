// Fuzzes whole batches, parted by lines "GO", on an empty database in memory: whatever they say,
// the engine answers with rows or a DbError in the result, and ends when it is cancelled.
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string_view>
#include <thread>

#include "tsql/engine.h"

namespace {

// Cancels a batch that runs longer than the fuzzer has time for.
class Watch {
  public:
    explicit Watch(owb::tsql::Engine& engine)
        : thread_([this, &engine] {
              std::unique_lock lock(mutex_);
              while (
                  !ended_.wait_for(lock, std::chrono::milliseconds(100), [this] { return over_; }))
                  engine.cancel();
          }) {}
    ~Watch() {
        {
            const std::lock_guard lock(mutex_);
            over_ = true;
        }
        ended_.notify_one();
        thread_.join();
    }

  private:
    std::mutex mutex_;
    std::condition_variable ended_;
    bool over_ = false;
    std::thread thread_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    const auto engine = owb::tsql::Engine::open(":memory:", {});
    engine->setCommandTimeout(1);
    const Watch watch(*engine);
    constexpr std::string_view go = "\nGO\n";
    while (!rest.empty()) {
        const size_t end = rest.find(go);
        engine->run(rest.substr(0, end));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + go.size());
    }
    return 0;
}
