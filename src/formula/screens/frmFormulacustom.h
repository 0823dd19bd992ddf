// Named queries of the user's own that give one number, as rules for leave that no formula can tell
// (MAS_FORMULACUSTOM, module 2). A new name follows into the formulas that use the query.
#pragma once

#include "session/screens/RowScreen.h"

namespace owb {

class frmFormulacustom final : public RowScreen {
  public:
    frmFormulacustom(Session& session, FrontEnd& frontEnd);

    TextBox txtFname{*this, "txtFname", "Name"};
    TextBox txtFtype{*this, "txtFtype", "Type"};
    TextBox txtFquery{*this, "txtFquery", "Query"};
    Label lblqryinfo{*this, "lblqryinfo"};
    Command cmdverify{*this, "cmdverify", "&Verify", [this] { cmdverify_Click(); }};

  private:
    Layout layout() override;
    std::string titleHead() const override { return ""; }  // of the company
    void loadList() override;
    bool readLine(size_t line) override;
    bool isShownBy(size_t line) const override;
    std::optional<Refusal> check() override;
    bool mayBeSaved(SaveBatch& batch) override;
    std::string writeRow(SaveBatch& batch) override;
    std::optional<Refusal> checkDeletion() override;
    bool mayBeDeleted(SaveBatch& batch) override;
    std::string rowWords() const override;

    void cmdverify_Click();
    void renameInFormulas(SaveBatch& batch) const;
    std::string takenSql() const;  // rows of another query of the typed name

    EditedRow query_{"MAS_FORMULACUSTOM", "FID", "The query"};
};

}  // namespace owb
