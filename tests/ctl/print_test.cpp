// A list of a company printed by owbctl, which has neither a display nor windows.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "run_owbctl.h"
#include "support/temp_dir.h"

namespace owb::ctl {
namespace {

TEST(OwbctlPrint, AListBecomesAPdfFileThatBearsItsTitle) {
    test::TempDir dir;
    const std::string db = dir.file("sample.owb"), pdf = dir.file("definitions.pdf");
    ASSERT_EQ(owbctl({"sample", db, "--employees", "5"}).status, 0);
    const Outcome printed =
        owbctl({"screen", db, "1500", "0"}, "print fpgMstDetail " + pdf + " A3\n");
    EXPECT_EQ(printed.err, "");
    EXPECT_NE(printed.out.find("print: " + pdf + "|1 page\n"), std::string::npos) << printed.out;
    std::ostringstream bytes;
    bytes << std::ifstream(pdf).rdbuf();
    EXPECT_EQ(bytes.str().rfind("%PDF-", 0), 0U);
    EXPECT_NE(bytes.str().find("/MediaBox [0 0 1191.000000 842.000000]"), std::string::npos)
        << "A3, landscape";
}

}  // namespace
}  // namespace owb::ctl
