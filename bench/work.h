// A session on a company's database as the benchmarks use it: whatever goes wrong ends the run.
#pragma once

#include <stdexcept>
#include <string>

#include "ctl/database.h"
#include "screen/progress.h"
#include "script/batch_front_end.h"
#include "session/MemorySettingsStore.h"
#include "session/Session.h"

namespace owb::bench {

class LoudBoxes final : public MessageBoxes {
  public:
    BoxAnswer show(const Box& box) override {
        if (box.icon == BoxIcon::Critical || box.icon == BoxIcon::None)
            throw std::runtime_error(box.text);
        return box.defaultAnswer;
    }
};

struct Work {
    LoudBoxes boxes;
    NoProgress progress;
    BatchFrontEnd frontEnd{boxes, progress};
    MemorySettingsStore settings;
    Session session{settings, frontEnd, wallClock, "."};

    explicit Work(const std::string& path) { ctl::openDatabase(session.gConn, path); }
};

}  // namespace owb::bench
