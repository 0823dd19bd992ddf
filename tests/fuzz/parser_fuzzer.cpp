// Fuzzes the reader of texts: any bytes become tokens and a tree, or a DbError.
#include "base/db_error.h"
#include "tsql/parse/parser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace owb::tsql;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    try {
        const std::vector<Token> tokens = tokenize(text);
        Parser(text, tokens).parseBatch();
    } catch (const owb::DbError&) {
    }
    return 0;
}
