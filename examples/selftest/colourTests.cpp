#include "colour.h"

#include <base/testCheck.h>

static const Kr::TestGroup colours("colours");

KR_TEST(colours, text)
{
    for (const char* const text : {"#000000", "#ff8000", "#0a0b0c"})
    {
        const Kr::TestNote note("text ", text);
        KR_CHECK(Colour::parse(text).toText() == text);
    }
    const Colour orange = Colour::parse("#ff8000");
    KR_CHECK(orange.red == 255);
    KR_CHECK(orange.green == 128);
    KR_CHECK(orange.blue == 0);
}

KR_TEST(colours, badText)
{
    for (const char* const text : {"", "ff8000", "#ff80", "#ff800g", "#ff80000", "#-1-1-1"})
    {
        const Kr::TestNote note("text '", text, "'");
        KR_CHECK_RAISES(Colour::parse(text), Kr::ExInternalError);
    }
}

KR_TEST(colours, mix)
{
    const Colour black;
    const Colour white = Colour::parse("#ffffff");
    KR_CHECK(Colour::mix(black, white, 0.) == black);
    KR_CHECK(Colour::mix(black, white, 1.) == white);
    KR_CHECK(Colour::mix(black, white, 0.5) == Colour::parse("#808080"));
}

KR_TEST(colours, luma)
{
    KR_CHECK(Colour().getLuma() == 0.);
    KR_CHECK_NEAR(Colour::parse("#ffffff").getLuma(), 1., 1e-12);
    KR_CHECK(Colour::parse("#00ff00").getLuma() > Colour::parse("#ff0000").getLuma());
}
