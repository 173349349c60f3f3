#include "taskdsl/derive/derive_substitute.h"

#include "fixtures/derive_fixture.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::derive {
namespace {

std::string substituted(std::string_view body, const ValueMap& values, std::string header = "d") {
    auto spec = parseDerive(blockOf(body, std::move(header)));
    substituteDerive(spec, values);
    return printed(spec).text;
}

TEST(DeriveSubstitute, ReachesTextsAndNamesInExpressions) {
    const ValueMap values{{"k", "v w"}, {"t", "opt"}};
    EXPECT_EQ(substituted("require f([t]) or 'x' in ['[k]', a] else no [k]\n"
                          "emit e = [t](1, b=-[t]) + {{ [t].[k] }} + '[k]' unit '[k]'\n"
                          "report '[k]' = c[t][u]\n"
                          "emit value e to kv [t].kv\n"
                          "emit report to root [t]\n"
                          "from atoms([t]) as a\n"
                          "join atoms('[k]') as b on atom.id\n"
                          "where [t] > 1 and [t] == 2\n"
                          "select s = [t]\n"
                          "group by [t] as g, [t] + 1 as h\n"
                          "aggregate m = sum([t])\n"
                          "sort [t]\n"
                          "emit table x to csv '[k]'\n"
                          "emit atomvec v = [t]\n"
                          "emit kv '[k]' from [t] as q\n"
                          "emit artifact '[k]' from [t] as q\n",
                          values),
              "@derive d\n"
              "  require f(opt) or \"x\" in [\"v w\", a] else \"no v w\"\n"
              "  emit e = opt(1, b=-opt) + {{ opt.v w }} + \"v w\" unit \"v w\"\n"
              "  report \"v w\" = copt[u]\n"
              "  emit value e to kv \"opt.kv\"\n"
              "  emit report to root \"opt\"\n"
              "  from atoms(opt) as a\n"
              "  join atoms(\"v w\") as b on atom.id\n"
              "  where opt > 1 and opt == 2\n"
              "  select s = opt\n"
              "  group by opt as g, opt + 1 as h\n"
              "  aggregate m = sum(opt)\n"
              "  sort opt asc\n"
              "  emit table x to csv \"v w\"\n"
              "  emit atomvec v = opt\n"
              "  emit kv \"v w\" from opt as q\n"
              "  emit artifact \"v w\" from opt as q\n"
              "@end\n");
}

TEST(DeriveSubstitute, ReachesTheOtherSources) {
    const ValueMap values{{"k", "v"}};
    EXPECT_EQ(
        substituted("from tasks('[k]*', program='[k]', template='[k]')\nselect a\nemit table t", values),
        "@derive d\n  from tasks(\"v*\", program=\"v\", template=\"v\")\n  select a = a\n  emit table "
        "t\n@end\n");
}

TEST(DeriveSubstitute, LeavesWhatItDoesNotKnow) {
    const std::string body = "emit e = a[1] + '[x]'";
    const std::string expected = "@derive d\n  emit e = a[1] + \"[x]\"\n@end\n";
    EXPECT_EQ(substituted(body, {}), expected);
    EXPECT_EQ(substituted(body, {{"y", "z"}}), expected);
}

TEST(DeriveSubstitute, CopiesKeepWhatTheyHad) {
    auto spec = parseDerive(blockOf("emit e = [k]"));
    const DeriveSpec copy = spec;
    substituteDerive(spec, {{"k", "v"}});
    EXPECT_EQ(renderDerive(spec, ""), "@derive d\n  emit e = v\n@end\n");
    EXPECT_EQ(renderDerive(copy, ""), "@derive d\n  emit e = [k]\n@end\n");
}

} // namespace
} // namespace morquill::taskdsl::derive
