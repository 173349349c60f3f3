#include "taskdsl/derive/formulas.h"

#include "fixtures/derive_fixture.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::derive {
namespace {

/// What `let r = <call>` becomes after the definitions.
std::string expanded(const std::string& definitions, const std::string& call) {
    const std::string text = canonical(definitions + "\nlet r = " + call + "\nemit r");
    const std::string lead = "let r = ";
    return text.substr(lead.size(), text.find('\n') - lead.size());
}

struct Fault {
    std::string body;
    std::string message;
};

void expectFaults(const std::string& lead, const std::vector<Fault>& faults) {
    for (const auto& [body, message] : faults) {
        EXPECT_EQ(refusal(lead + body), message) << body;
    }
}

TEST(ReservedNames, AreTheWordsOfTheLanguageAndOfTheCatalog) {
    const std::string words = "abs aggregate angle assert at bind boltzmann cbs coalesce convert count "
                              "derive_value derived dimensionless "
                              "dipole dipole_moment emit energy entropy exists exp false filter force "
                              "frequency from group harmonic_zpe "
                              "heat_capacity heatcapacity join kv length let limit log mass matrix_value max "
                              "mean min nth number pow "
                              "present pressure profile quantity reduce relative report require result "
                              "rethermo row_index rrho_enthalpy "
                              "scalar select sin single_point sort spectral spectral_coordinate sqrt step "
                              "sum task_index temperature "
                              "thermo thermochemistry true using where";
    const auto names = splitOn(words, ' ');
    EXPECT_EQ(names.size(), 73U);
    for (const auto& name : names) {
        EXPECT_TRUE(isReservedDeriveName(name)) << name;
    }
    for (const char* name : {"Energy", "THERMO", "zpe", "Gap", "homo", "s2", "SCF_energy"}) {
        EXPECT_TRUE(isReservedDeriveName(name)) << name;
    }
    for (const char* name : {"formula", "else", "as", "to", "cos", "gibbs", "energies", "x", ""}) {
        EXPECT_FALSE(isReservedDeriveName(name)) << name;
    }
}

TEST(Formula, ReplacesItsParameters) {
    const std::string f = "formula rel(x, y) = (x - y) * 627.5";
    EXPECT_EQ(expanded(f, "rel(a, b)"), "(a - b) * 627.5");
    EXPECT_EQ(expanded(f, "rel(y=a + c, x=b)"), "(b - (a + c)) * 627.5");
    EXPECT_EQ(expanded(f, "rel(a, y=b)"), "(a - b) * 627.5");
    EXPECT_EQ(expanded(f, "max(rel(a, b), -rel(c, d))"), "max((a - b) * 627.5, -((c - d) * 627.5))");
    EXPECT_EQ(expanded(f, "Rel(a, b)"), "Rel(a, b)");
    EXPECT_EQ(expanded("formula one() = 1", "one() + one( )"), "1 + 1");
    EXPECT_EQ(expanded("formula g(x) = energy(x, 'x') + x", "g(opt)"), "energy(opt, \"x\") + opt");
}

TEST(Formula, UsesOtherFormulas) {
    const std::string defs = "formula sq(x) = x * x\nformula norm(x, y) = sqrt(sq(x) + sq(y))";
    EXPECT_EQ(expanded(defs, "norm(a + 1, y=b)"), "sqrt((a + 1) * (a + 1) + b * b)");
    EXPECT_EQ(expanded(defs, "sq(sq(a))"), "a * a * a * a");
}

TEST(Formula, StandsInFrontOfItsUse) {
    EXPECT_EQ(canonical("let a = f(1)\nformula f(x) = x + 1\nlet b = f(1)\nemit b"),
              "let a = f(1)\nlet b = 1 + 1\nemit b = b\n");
    EXPECT_EQ(expanded("formula g(x) = f(x)\nformula f(x) = x + 1", "g(a)"), "a + 1");
}

TEST(Formula, ExpandsInEveryStatement) {
    const std::string f = "formula f(x) = x + 1\n";
    EXPECT_EQ(canonical(f + "require f(a) == f(b) else no\nemit e = f(a)\nreport r = f(a)"),
              "require a + 1 == b + 1 else \"no\"\nemit e = a + 1\nreport \"r\" = a + 1\n");
    EXPECT_EQ(
        canonical(f +
                  "from tasks()\nwhere f(a)\nselect s = f(a)\ngroup by f(a) as g\naggregate t = sum(f(a))\n"
                  "sort f(a) desc\nemit table t"),
        "from tasks(\"*\")\nwhere a + 1\nselect s = a + 1\ngroup by a + 1 as g\naggregate t = sum(a + 1)\n"
        "sort a + 1 desc\nemit table t\n");
    EXPECT_EQ(canonical(f + "from atoms(o) as a\nemit atomvec v = f(a)\nemit kv p from f(a) as q\n"
                            "emit artifact p from f(a) as q"),
              "from atoms(o) as a\nemit atomvec v = a + 1\nemit kv \"p\" from a + 1 as q\n"
              "emit artifact \"p\" from a + 1 as q\n");
}

TEST(Formula, DefinitionsAreChecked) {
    const std::string shape = "formula must be 'formula name(parameters) = expression'";
    const std::string signature = "formula signature must be name(parameters)";
    const std::string profile = "profile p for g = (a=1)\n";
    expectFaults(
        profile,
        {
            {"formula f(x)", shape},
            {"formula f(x=1)", shape},
            {"formula f(x) =", "formula requires an expression body"},
            {"formula f = 1", signature},
            {"formula f(x)(y) = 1", signature},
            {"formula f(x) y = 1", signature},
            {"formula = 1", signature},
            {"formula (x) = 1", "formula name must be a simple identifier"},
            {"formula a.b(x) = 1", "formula name must be a simple identifier"},
            {"formula Sqrt(x) = 1", "formula name 'Sqrt' is reserved by the derive language"},
            {"formula ZPE(x) = 1", "formula name 'ZPE' is reserved by the derive language"},
            {"formula f(x) = 1\nformula f(y) = 2", "duplicate derive surface definition 'f'"},
            {"formula p(x) = 1", "duplicate derive surface definition 'p'"},
            {"formula f(x,) = 1", "formula parameter list contains an empty parameter"},
            {"formula f(,) = 1", "formula parameter list contains an empty parameter"},
            {"formula f(a.b) = 1", "formula parameters must be simple identifiers"},
            {"formula f(x=1) = 1", "formula parameters must be simple identifiers"},
            {"formula f(using) = 1", "formula parameter name 'using' is reserved"},
            {"formula f(x, x) = 1", "duplicate formula parameter 'x'"},
            {"formula f(x) = x +* 2", "expected a number, identifier, string, function call, or '('"},
            {"formula f(x) = x + {{ t.k }}",
             "formula bodies cannot capture snapshot references; pass the selected value as a parameter"},
            {"formula f(x) = x + y",
             "formula body captures bare identifier 'y'; pass it as a parameter or quote it as a literal"},
            {"formula f(x) = energy(-opt)",
             "formula body captures bare identifier 'opt'; pass it as a parameter or quote it as a literal"},
            {"formula f(x) = g(b=y, a=z)",
             "formula body captures bare identifier 'y'; pass it as a parameter or quote it as a literal"},
            {"formula f(x) = g(x, using=q)", "unknown parameter profile 'q'"},
            {"formula f(x) = h(x, using=p)", "profile 'p' is for g(), not h()"},
            {"formula f(x) = g(x, using=1)", "using profile must be an identifier or string literal"},
            {"formula f(x) = g(x, using=p)\nemit e = f(1)", "(accepted)"},
        });
}

TEST(Formula, CallsAreChecked) {
    expectFaults(
        "formula f(x, y) = x + y\nprofile p for f = (y=1)\nemit e = ",
        {
            {"f(1, 2, 3)", "formula 'f' received too many arguments"},
            {"f(1, z=2)", "formula 'f' has no parameter 'z'"},
            {"f(x=1, x=2)", "formula argument 'x' is specified more than once"},
            {"f(1, x=2)", "argument 'x' is specified by both another argument and the function call"},
            {"f(1)", "formula 'f' requires argument 'y'"},
            {"f()", "formula 'f' requires argument 'x'"},
            {"f(y=2)", "formula 'f' requires argument 'x'"},
            {"f(x=1, 2)", "positional arguments must precede using= and other named arguments"},
            {"f(using=p, 2)", "positional arguments must precede using= and other named arguments"},
            {"max(a=1, 2)", "positional arguments must precede using= and other named arguments"},
            {"max(1, -(2 + abs(a=1, 2)))",
             "positional arguments must precede using= and other named arguments"},
            {"f(1, 2, using=p)",
             "argument 'y' is specified by both the parameter profile and the function call"},
            {"f(1, y=2, using=p)",
             "argument 'y' is specified by both the parameter profile and the function call"},
            {"f(1, x=2, using=p)",
             "argument 'x' is specified by both another argument and the function call"},
        });
}

TEST(Formula, RecursionIsTold) {
    EXPECT_EQ(refusal("formula f(x) = f(x) + 1\nemit e = 1"), "(accepted)");
    EXPECT_EQ(refusal("formula f(x) = f(x) + 1\nemit e = f(1)"),
              "recursive formula expansion is not allowed: f -> f");
    EXPECT_EQ(refusal("formula f(x) = g(x)\nformula g(x) = max(1, h(x))\nformula h(x) = g(x)\nemit e = f(1)"),
              "recursive formula expansion is not allowed: f -> g -> h -> g");
    EXPECT_EQ(expanded("formula two(x) = x + x", "two(two(a))"), "a + a + a + a");
}

/// `f1(x) = <first>`, and `f<n>(x)` from `f<n-1>` by `step`, whose every "#" is that name.
std::string chainOfFormulas(int count, const std::string& first, const std::string& step) {
    std::string text = "formula f1(x) = " + first + "\n";
    for (int n = 2; n <= count; ++n) {
        text += "formula f" + std::to_string(n) +
                "(x) = " + replaceAll(step, "#", "f" + std::to_string(n - 1)) + "\n";
    }
    return text;
}

TEST(Formula, DepthIsBoundedAt64) {
    const std::string chain = chainOfFormulas(65, "x", "#(x) + 1");
    EXPECT_EQ(refusal(chain + "emit e = f64(a)"), "(accepted)");
    EXPECT_EQ(refusal(chain + "emit e = f65(a)"), "formula expansion exceeds the maximum depth of 64");
}

TEST(Formula, ProfilesDoNotCountTowardsTheDepth) {
    const std::string profiles = "profile p for g = (a=1)\nprofile q for g = (a=g(using=p))\n";
    const std::string chain = chainOfFormulas(64, "g(x, using=q)", "#(x)");
    EXPECT_EQ(canonical(profiles + chain + "emit e = f64(b)"), "emit e = g(b, a=g(a=1))\n");
    const std::string inner =
        "formula h(x) = x\nprofile r for g = (a=h(1))\n" + chainOfFormulas(64, "g(x, using=r)", "#(x)");
    EXPECT_EQ(canonical(inner + "emit e = f63(b)"), "emit e = g(b, a=1)\n");
    EXPECT_EQ(refusal(inner + "emit e = f64(b)"), "formula expansion exceeds the maximum depth of 64");
}

TEST(Formula, DoublingDefinitionsEndInAnErrorNotInMemory) {
    const std::string message = "derive expansion exceeds the maximum size of 100000 nodes";
    EXPECT_EQ(refusal(chainOfFormulas(64, "x + x", "#(x) + #(x)") + "emit e = f64(a)"), message);
    EXPECT_EQ(refusal(chainOfFormulas(64, "x + x", "#(#(x))") + "emit e = f64(a)"), message);
    std::string nested = "a";
    for (int i = 0; i < 64; ++i) {
        nested = "f1(" + nested + ")";
    }
    EXPECT_EQ(refusal(chainOfFormulas(1, "x + x", "") + "emit e = " + nested), message);
    EXPECT_EQ(refusal(chainOfFormulas(10, "x + x", "#(x) + #(x)") + "emit e = f10(a)"), "(accepted)");
    std::string many = chainOfFormulas(10, "x + x", "#(x) + #(x)");
    for (int i = 0; i < 100; ++i) {
        many += "let v = f10(a)\n";
    }
    EXPECT_EQ(refusal(many + "emit v"), message);
}

TEST(Formula, ExpandedNestingIsBoundedSoThatItReadsBack) {
    std::string signs;
    for (int i = 0; i < 100; ++i) {
        signs += "-";
    }
    const std::string chain = chainOfFormulas(20, "x", signs + "#(x)");
    EXPECT_EQ(refusal(chain + "emit e = f10(a)"), "(accepted)");
    EXPECT_EQ(refusal(chain + "emit e = f12(a)"), "expression is nested too deeply");
    // A left operand that needs no parentheses does not nest.
    std::string nested = "a";
    for (int i = 0; i < 900; ++i) {
        nested = "inc(" + nested + ")";
    }
    EXPECT_EQ(refusal("formula inc(x) = x + 1\nemit e = " + nested), "(accepted)");
    std::string deep = "a";
    for (int i = 0; i < 400; ++i) {
        deep = "neg(" + deep + ")";
    }
    EXPECT_EQ(refusal("formula neg(x) = -(1 - f(x))\nemit e = " + deep), "expression is nested too deeply");
}

TEST(Formula, LongExpressionsAreNotLimited) {
    std::string sum = "f(a)";
    for (int i = 0; i < 100'000; ++i) {
        sum += " + b";
    }
    EXPECT_EQ(expanded("formula f(x) = x * 2", sum).size(), sum.size() + 1); // "f(a)" becomes "a * 2"
}

TEST(Profile, AddsItsArgumentsAfterThoseOfTheCall) {
    const std::string p = "profile std for thermo = (temperature=298.15, model='rrho', scale=s)";
    EXPECT_EQ(expanded(p, "thermo(opt, using=std, quantity='h')"),
              "thermo(opt, quantity=\"h\", temperature=298.15, model=\"rrho\", scale=s)");
    EXPECT_EQ(expanded(p, "1 - thermo(opt, using='std')"),
              "1 - thermo(opt, temperature=298.15, model=\"rrho\", scale=s)");
    EXPECT_EQ(expanded("profile none for f = ()", "f(a, using=none)"), "f(a)");
}

TEST(Profile, WorksForFormulasAndInsideThem) {
    EXPECT_EQ(expanded("formula f(x, y) = x - y\nprofile p for f = (y={{ t.k }})", "f(a, using=p)"),
              "a - {{ t.k }}");
    // The profile's `x` is not the parameter, and a parameter called like the profile does not replace it.
    EXPECT_EQ(expanded("profile p for g = (b=x)\nformula f(x, p) = g(x, p, using=p)", "f(1, 2)"),
              "g(1, 2, b=x)");
    EXPECT_EQ(expanded("formula sq(x) = x * x\nprofile p for g = (b=sq(c))", "g(using=p)"), "g(b=c * c)");
}

TEST(Profile, DefinitionsAreChecked) {
    expectFaults(
        "formula taken(x) = x\n",
        {
            {"profile p for f", "profile must include '= (named arguments)'"},
            {"profile p = (a=1)", "profile must be 'profile name for function = (named arguments)'"},
            {"profile a.b for f = (a=1)", "profile name must be a simple identifier"},
            {"profile for f = (a=1)", "profile name must be a simple identifier"},
            {"profile energy for f = (a=1)", "formula name 'energy' is reserved by the derive language"},
            {"profile taken for f = (a=1)", "duplicate derive surface definition 'taken'"},
            {"profile p for f = (a=1)\nprofile p FOR g = (a=1)", "duplicate derive surface definition 'p'"},
            {"profile p for f() = (a=1)", "profile target must be a function name"},
            {"profile p for = (a=1)", "profile target must be a function name"},
            {"profile p for f = a=1", "profile arguments must be enclosed in parentheses"},
            {"profile p for f =", "profile arguments must be enclosed in parentheses"},
            {"profile p for f = (1) + (2)", "invalid profile argument list"},
            {"profile p for f = (a=1, 2)", "profile entries must use named arguments"},
            {"profile p for f = (using=q)", "profiles cannot inherit another profile"},
            {"profile p for f = (a=1, a=2)", "duplicate profile argument 'a'"},
            {"profile p for thermo = (task=a)", "thermo profiles cannot hide call-specific argument 'task'"},
            {"profile p for thermochemistry = (quantity=a)",
             "thermo profiles cannot hide call-specific argument 'quantity'"},
            {"profile p for rethermo = (t=1, electronic_energy=a)",
             "thermo profiles cannot hide call-specific argument 'electronic_energy'"},
            {"profile p for energy = (task=a)\nemit e", "(accepted)"},
        });
}

TEST(Profile, CallsAreChecked) {
    expectFaults("profile p for f = (a=1)\nprofile q for f = (b=1)\nemit e = ",
                 {
                     {"f(using=p, using=q)", "a function call may use only one parameter profile"},
                     {"f(using=1)", "using profile must be an identifier or string literal"},
                     {"f(using={{ a.b }})", "using profile must be an identifier or string literal"},
                     {"f(using=r)", "unknown parameter profile 'r'"},
                     {"g(using=p)", "profile 'p' is for f(), not g()"},
                     {"F(using=p)", "profile 'p' is for f(), not F()"},
                     {"f(using=p, 2)", "positional arguments must precede using= and other named arguments"},
                     {"f(a=2, using=p)",
                      "argument 'a' is specified by both the parameter profile and the function call"},
                 });
    EXPECT_EQ(refusal("let r = f(using=p)\nprofile p for f = (a=1)\nemit r"),
              "unknown parameter profile 'p'");
}

TEST(Profile, ThatUsesItselfEnds) {
    const std::string message = "profile expansion exceeds the maximum depth of 64";
    EXPECT_EQ(refusal("profile p for g = (a=g(using=p))\nemit e = g(using=p)"), message);
    EXPECT_EQ(refusal("formula f(x, y) = x\nprofile p for f = (y=f(1, using=p))\nemit e = f(1, using=p)"),
              message);
}

TEST(Profile, NestsUpTo64Levels) {
    const auto chain = [](int count) {
        std::string text = "profile p1 for g = (a=1)\n";
        for (int n = 2; n <= count; ++n) {
            text +=
                "profile p" + std::to_string(n) + " for g = (a=g(using=p" + std::to_string(n - 1) + "))\n";
        }
        return text + "emit e = g(using=p" + std::to_string(count) + ")";
    };
    EXPECT_EQ(refusal(chain(64)), "(accepted)");
    EXPECT_EQ(refusal(chain(65)), "profile expansion exceeds the maximum depth of 64");
}

TEST(Bind, LowersToOneLetPerQuantity) {
    EXPECT_EQ(canonical("bind thermo(opt, temperature=300) to (h = enthalpy, g = gibbs)\nemit g"),
              "let h = thermo(opt, temperature=300, quantity=\"enthalpy\")\n"
              "let g = thermo(opt, temperature=300, quantity=\"gibbs\")\nemit g = g\n");
    EXPECT_EQ(
        canonical("profile std for thermo = (temperature=298.15)\nBIND thermo(opt, using=std) TO (\n  h = "
                  "enthalpy,\n  s = entropy\n)\nemit h"),
        "let h = thermo(opt, quantity=\"enthalpy\", temperature=298.15)\n"
        "let s = thermo(opt, quantity=\"entropy\", temperature=298.15)\nemit h = h\n");
}

TEST(Bind, IsChecked) {
    expectFaults(
        "", {
                {"bind thermo(a)", "bind must be 'bind thermo(...) to (name = quantity, ...)'"},
                {"bind thermo(a, to)", "bind must be 'bind thermo(...) to (name = quantity, ...)'"},
                {"bind thermo(a) to", "bind projections must be enclosed in parentheses"},
                {"bind thermo(a) to b = c", "bind projections must be enclosed in parentheses"},
                {"bind thermo(a) to (b = c), (d = e)", "bind projections must be enclosed in parentheses"},
                {"bind to (b = c)", "bind currently supports only direct thermo(...) calls"},
                {"bind energy(a) to (b = c)", "bind currently supports only direct thermo(...) calls"},
                {"bind Thermo(a) to (b = c)", "bind currently supports only direct thermo(...) calls"},
                {"bind thermo(a) + 1 to (b = c)", "bind currently supports only direct thermo(...) calls"},
                {"bind thermo(a, quantity=h) to (b = c)",
                 "bind thermo(...) supplies quantity through its projection list"},
                {"bind thermo(a) to ()", "bind requires at least one thermo projection"},
                {"bind thermo(a) to (,)", "bind projection list contains an empty entry"},
                {"bind thermo(a) to (b = c,)", "bind projection list contains an empty entry"},
                {"bind thermo(a) to (b)", "bind projection must be 'name = thermo_quantity'"},
                {"bind thermo(a) to (b.x = c)", "bind target name must be a simple identifier"},
                {"bind thermo(a) to (= c)", "bind target name must be a simple identifier"},
                {"bind thermo(a) to (b = 'c')", "bind thermo quantity must be an identifier"},
                {"bind thermo(a) to (b =)", "bind thermo quantity must be an identifier"},
                {"bind thermo(a) to (b = c, b = d)", "duplicate bind target 'b'"},
                {"bind thermo(a, using=p) to (b = c)", "unknown parameter profile 'p'"},
            });
}

TEST(Bind, ManyProjectionsOfALongCallAreBounded) {
    std::string body = "bind thermo(opt, a=1";
    for (int i = 0; i < 1000; ++i) {
        body += " + 1";
    }
    body += ") to (q = h";
    for (int i = 0; i < 1000; ++i) {
        body += ", q" + std::to_string(i) + " = h";
    }
    EXPECT_EQ(refusal(body + ")\nemit q"), "derive expansion exceeds the maximum size of 100000 nodes");
}

TEST(Expansion, SharesWhatDoesNotChange) {
    DeriveSurface surface;
    parseFormula("f(x) = x", {}, surface);
    const auto plain = plot::parsePlotExpression("a + max(b, -c) * 2", {});
    EXPECT_EQ(expandFormulas(plain, surface, {}), plain);
    EXPECT_EQ(surface.expandedNodes, 0U);
}

} // namespace
} // namespace morquill::taskdsl::derive
