// A session on a database for commands that ask the program's engines and change nothing.
#pragma once

#include "ctl/command.h"
#include "ctl/database.h"
#include "session/MemorySettingsStore.h"
#include "session/Session.h"
#include "session/modEmployeeViews.h"
#include "session/modOWBSetting.h"

namespace owb::ctl {

class ReadingSession {
  public:
    explicit ReadingSession(const std::string& db) : session(settings_, boxes_, wallClock, ".") {
        openCompany(session.gConn, db);
        SetHostNames(session);
        LoadOptSet(session);
    }

  private:
    // Whatever the engines have to say is the reason why the command fails.
    class FailingBoxes final : public MessageBoxes {
      public:
        BoxAnswer show(const Box& box) override { throw CommandError(box.text); }
    };
    FailingBoxes boxes_;
    MemorySettingsStore settings_;

  public:
    Session session;
};

}  // namespace owb::ctl
