// What writes is tried three ways. As stated; with each of its statements failing in turn and the
// program going on; with another session's whole work between two of its statements. A Rehearsal
// keeps a company as it stands and lets one act be tried on it again and again:
//
//     Rehearsal rehearsal(company, [&] { drive<modHolidayList>(company, "click cmdSave"); });
//     rehearsal.failsAnywhere();
//     rehearsal.othersWorkAnywhere([](Session& other) { other.gConn.Execute("..."); });
//
// After each try the company is healed: an undisturbed start with the full recalculation. Then its
// tables must be those of the act (or of both works, in either order) without any disturbance, or
// those without the act, and then a message must have been shown.
#pragma once

#include <functional>
#include <string>

#include "support/company.h"

namespace owb::test {

// The first lines in which two dumps of tables differ; "" when they are the same.
std::string difference(const std::string& found, const std::string& expected);

class Rehearsal {
  public:
    using Act = std::function<void()>;
    using OtherWork = std::function<void(Session& other)>;

    // The act works on company.session. What it throws (DbError) counts as a message. Such places
    // as OWB_EVERY=1 does not ask for are left out: about `places` of them are tried.
    Rehearsal(Company& company, Act act, size_t places = 25);

    // At each batch: the batch fails with 1205 and is not done; or it is done, and the answer is
    // lost with the connection's error.
    void failsAnywhere();
    // Before each batch of the act, outside its transactions.
    void othersWorkAnywhere(const OtherWork& work);

    // Every row of every table that an act may change, without the numbers that rows are given.
    std::string tables();
    // An undisturbed start on the company with the full recalculation.
    void heal();
    // The company as it was when the rehearsal began, met by a new process.
    void restore();

  private:
    struct Outcome {
        std::string tables;
        bool told = false;  // a box or an error
    };
    Outcome tryOut(const std::function<void()>& disturbance);
    size_t countBatches();
    std::vector<size_t> chosen(size_t batches) const;
    void reconnect();
    Outcome withOtherWork(const OtherWork& work, bool before);
    void runOther(const OtherWork& work);

    Company& company_;
    Act act_;
    size_t places_;
    std::string kept_;  // file as it was
    size_t toldUndisturbed_ = 0;
};

}  // namespace owb::test
