// What every screen over the family's database shares: its session, the rights on its commands, the
// read-only user, how it asks, refuses and saves.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "screen/control_array.h"
#include "screen/grid.h"
#include "screen/lists.h"
#include "screen/print_pages.h"
#include "screen/screen.h"
#include "screen/text_box.h"
#include "session/Session.h"
#include "session/locks.h"
#include "session/modSave.h"

namespace owb {

// Why something is not done: the text, the field at fault, which gets the focus, and the box.
struct Refusal {
    std::string text;
    Control* field = nullptr;
    BoxIcon icon = BoxIcon::Information;
    std::string title = "Orvane Wagebook";
};

class SessionScreen : public Screen {
  public:
    // Asked before the handler of whatever writes, on every way in. Nobody writes while the screen
    // is not writable, or where the user's rights deny it ("Permission denied.").
    bool mayWrite(const Control& control) override;

    // "Plant - Mar/2026 - Attendance Detail - Sample Engineering Works": the head, or the company
    // where the screen is for all, the month where it shows one, the caption, the company.
    std::string title() const override;
    DateTime entryDay() const override { return {session_.now().day, 0}; }
    // Asks before what the user has typed is dropped.
    bool mayClose() override;
    // With company, head, month, user and time.
    PrintHeading printHeading() const override;

    Session& session() { return session_; }
    using Screen::frontEnd;

  protected:
    // `formId`: the screen's own menu identifier, by which its rights are kept; 0 where it has
    // none: the one that the program was started for.
    SessionScreen(Session& session, FrontEnd& frontEnd, std::string name, std::string caption,
                  int32_t formId = 0)
        : Screen(frontEnd, std::move(name), std::move(caption)),
          session_(session),
          formId_(formId) {}

    // Rights are read and a read-only user's commands disabled; then the screen loads.
    void onLoad() final;
    virtual void load() {}
    // The one switch for all that writes: the commands and boxes marked so, and what cells take.
    void setWritable(bool on);
    // After a screen has enabled controls by what it shows: what writes stays closed all the same.
    void keepClosed();

    // For the title: the name of the head that the screen shows, "" for all, and its month.
    virtual std::string titleHead() const;
    virtual int32_t titleMonth() const { return 0; }
    // Whether the user has typed what is not saved.
    virtual bool unsaved() const { return false; }
    // Whether what he has typed may be dropped to do something else, which the question names:
    // "close".
    bool mayDrop(const std::string& next);

    // Tells a refusal, in a box and at the field, and gives true; false when there is none.
    bool refused(const std::optional<Refusal>& refusal);
    void refuse(const std::string& text, Control& field) { refused(Refusal{text, &field}); }
    // A lock that holds is told, and the result is true. Otherwise the batch asks it once more.
    bool refusedByLock(SaveBatch& batch, const Lock& lock);
    static Refusal asRefusal(const Lock& lock) {
        return {lock.text, nullptr, BoxIcon::Warning, lock.title};
    }

    // "Saved 14:02" in the status line.
    void sayDone(const std::string& what);
    // Runs a save or a deletion, and says so in the status line. When the database refused it,
    // since somebody else was faster, the reason is told, `showAgain` shows what there is now, and
    // the result is false.
    bool save(const SaveBatch& batch, const std::function<void()>& showAgain);
    // Whether what was shown still stands; otherwise as with save.
    bool stillAsShown(const ShownRow& row, const std::string& what,
                      const std::function<void()>& showAgain);

    // A question with Yes and No, No being the default.
    bool ask(const std::string& text, const std::string& title = "Orvane Wagebook");
    // The question before a deletion, with what is deleted on a line of its own.
    bool askDeletion(const std::string& text, const std::string& what) {
        return ask(text + "\n\n" + what);
    }
    void inform(const std::string& text, const std::string& title = "Orvane Wagebook") {
        frontEnd().information(text, title);
    }

    Session& session_;

  private:
    void readRights();
    const std::string& companyName() const;

    int32_t formId_;
    bool writable_ = true;
    Control* toldAt_ = nullptr;                         // the field that bears the last refusal
    mutable std::optional<std::string> companyName_{};  // read when it is first asked
};

}  // namespace owb
