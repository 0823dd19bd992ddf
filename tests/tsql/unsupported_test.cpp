// The list of what the engine refuses is true, and the document repeats it word for word.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "tsql/engine.h"
#include "tsql/unsupported.h"

namespace owb::tsql {
namespace {

TEST(Unsupported, EachFeatureIsRefused) {
    for (const Unsupported& u : unsupportedFeatures()) {
        auto engine = Engine::open(":memory:", {});
        for (const char* setup :
             {"CREATE TABLE t (a int, s varchar(10)) INSERT INTO t VALUES (1, 'x')",
              "CREATE FUNCTION dbo.tf(@a int) RETURNS @r TABLE (b int) AS BEGIN INSERT INTO @r "
              "VALUES (@a) RETURN END",
              "CREATE VIEW guarded AS SELECT a FROM t WHERE a > 1 WITH CHECK OPTION"})
            ASSERT_TRUE(engine->run(setup).errors.empty()) << setup;
        const BatchResult r = engine->run(u.example);
        EXPECT_FALSE(r.errors.empty()) << u.feature << ": " << u.example;
        if (r.errors.empty()) continue;
        // Told as what is not supported, as a syntax error, or as a name that is not known.
        const int number = r.errors[0].number;
        EXPECT_TRUE(number == 15281 || number == 2812 || number == 2715 || number == 195 ||
                    r.errors[0].severity == 15)
            << u.feature << ": " << number << " " << r.errors[0].what();
    }
}

TEST(Unsupported, TheDocumentListsTheSame) {
    std::ifstream in(OWB_SOURCE_DIR "/docs/embedded-database.md");
    std::stringstream document;
    document << in.rdbuf();
    std::string list;
    for (const Unsupported& u : unsupportedFeatures()) list += std::string("- ") + u.feature + "\n";
    EXPECT_NE(document.str().find("\n\n" + list + "\n"), std::string::npos)
        << "the section should hold:\n"
        << list;
}

}  // namespace
}  // namespace owb::tsql
