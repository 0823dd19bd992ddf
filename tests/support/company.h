// A session on a company database of its own, for one test: fixed clock, settings in memory, boxes
// recorded and answered as queued.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "session/MemorySettingsStore.h"
#include "session/Session.h"
#include "support/temp_dir.h"

namespace owb::test {

class RecordedBoxes final : public MessageBoxes {
  public:
    BoxAnswer show(const Box& box) override {
        shown.push_back(box);
        if (answers.empty()) return box.defaultAnswer;
        const BoxAnswer answer = answers.front();
        answers.pop_front();
        return answer;
    }
    std::vector<Box> shown;
    std::deque<BoxAnswer> answers;
};

class Company {
  public:
    // A copy of a freshly created company database, with its delivered rows.
    Company();

    void run(const std::string& sql) { session.gConn.Execute(sql); }
    // First value as text; "" for NULL or no row.
    std::string value(const std::string& sql);
    // Rows joined by " ", fields by ",": "1,CL 2,SL".
    std::string rows(const std::string& sql);
    // MAS_MONTHYEAR rows of calendar months, from key to key.
    void addMonths(int32_t from, int32_t to);

    TempDir folder;
    MemorySettingsStore settings;
    RecordedBoxes boxes;
    Session session;
};

}  // namespace owb::test
