#!/bin/sh
# make_corpus.sh FOLDER: fills FOLDER/parser with the batches of tests/sql, FOLDER/batch with the
# same behind the first one of their file, which makes its tables, and FOLDER/sql.dict with words;
# FOLDER/expression with the expressions of tests/formula, and FOLDER/expression.dict.
set -eu
tests="$(cd "$(dirname "$0")/.." && pwd)"
folder="$1"
mkdir -p "$folder/parser" "$folder/batch" "$folder/expression"
find "$tests/sql" -name '*.test' | sort | while read -r file; do
    name="$(basename "$(dirname "$file")")_$(basename "$file" .test)"
    awk -v parser="$folder/parser/$name" -v batch="$folder/batch/$name" '
        /^## / { ++n; inside = 1; if (n > 1) printf "%sGO\n", first > (batch "." n); next }
        /^----/ { inside = 0 }
        inside { print > (parser "." n); if (n > 1) print > (batch "." n); else first = first $0 "\n" }
        ' "$file"
done
grep -ohE '[A-Za-z_@#]{2,}' -r "$tests/sql" --include='*.test' | tr a-z A-Z | sort | uniq -c |
    awk '$1 > 4 { print "\"" $2 "\"" }' >"$folder/sql.dict"
expressions="$tests/formula/expressions_test.cpp"
grep ' => ' "$expressions" | sed 's/ => .*//' |
    awk -v folder="$folder/expression" '{ print > (folder "/" NR) }'
{
    cat "$tests"/../src/formula/Expr*.cpp | grep -oE '"[A-Z0-9]{2,}"'
    printf '"%s"\n' AND OR NOT XOR EQV IMP MOD IS OWIF OWROUND OWBETWEEN 'CDATE(' '&H' '&O' '<>' '>='
} | sort -u >"$folder/expression.dict"
