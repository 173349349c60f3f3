#include "taskdsl/base/line_fault.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

TEST(LineFault, SaysItsPlaceInTheMessageAndCarriesItsSpan) {
    const auto fault = lineFault({"  %x y", "l.mqlib", 7}, "t.mq", "no such x");
    EXPECT_EQ(fault.text(), "l.mqlib:7: no such x");
    EXPECT_EQ(fault.message(), "l.mqlib:7: no such x");
    EXPECT_EQ(formatSpan(fault.span()), "l.mqlib:7:3-7:7");
    EXPECT_TRUE(fault.messageNamesPlace());
}

TEST(LineFault, ALineWithoutAnOriginIsInTheCurrentFile) {
    const auto fault = lineFault({"x", {}, 2}, "t.mq", "bad");
    EXPECT_EQ(fault.text(), "t.mq:2: bad");
    EXPECT_EQ(formatSpan(fault.span()), "t.mq:2:1-2:2");
    EXPECT_EQ(lineFault({"x", {}, 2}, "", "bad").text(), "<memory>:2: bad");
}

TEST(MisplacedDirective, IsTheFaultOfItsLine) {
    const auto fault = misplacedDirective({"%body", {}, 4}, "t.mq");
    EXPECT_EQ(fault.text(), "t.mq:4: task directive appears outside a task block");
    EXPECT_EQ(formatSpan(fault.span()), "t.mq:4:1-4:6");
}

} // namespace
} // namespace morquill::taskdsl
