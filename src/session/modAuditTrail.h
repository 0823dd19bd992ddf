// The audit trail: one line for each change, written by the family's procedure.
#pragma once

#include <cstdint>
#include <string>

namespace owb {

struct Session;

constexpr int32_t kAuditModule = 3;  // this program, among the family's

// Is the audit trail kept? Asked once for each session; while it cannot be asked there is none.
bool FnBlnAuditTrailOn(Session& session);
// Errors are ignored: no save fails for the trail's sake. `lngEmpId` 0: no one employee. Callers
// ask FnBlnAuditTrailOn first.
void UpdateAuditTrail(Session& session, int32_t module, int64_t lngEmpId, const std::string& action,
                      const std::string& detail, const std::string& extra = "");

// The detail of a line, piece by piece. Each label begins with `mark`.
class AuditText {
  public:
    AuditText() : mark_(":") {}
    explicit AuditText(std::string begin, std::string mark = ":")
        : text_(std::move(begin)), mark_(std::move(mark)) {}

    AuditText& add(const std::string& text);
    // What the labels from here on begin with.
    AuditText& mark(const std::string& mark);
    AuditText& value(const std::string& label, const std::string& value);  // ":Label = value"
    // ":Label Changed from <before> to <now>", where they differ.
    AuditText& change(const std::string& label, const std::string& before, const std::string& now);
    const std::string& text() const { return text_; }

  private:
    std::string text_, mark_;
};

// A line as a save hands it over; it is written once the save is done (SaveBatch::audit).
struct AuditLine {
    std::string action;
    AuditText detail;
    std::string extra = "";
    int64_t empId = 0;
};

// "Yes" or "No".
std::string FnStrYesNo(bool value);

}  // namespace owb
