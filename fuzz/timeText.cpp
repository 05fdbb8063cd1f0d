// Fuzzes the two text forms of times: "count numerator denominator", against the runtime library's
// own tokenizer and conversions, and time code. The first byte chooses.

#include <base/dtEx.h>
#include <base/dtTimeCode.h>
#include <base/dtTimeUtil.h>
#include <base/rationalEx.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>

namespace
{

void require(bool holds)
{
    if (!holds)
        std::abort();
}

/// What the reading of one text has to come to.
struct Expected
{
    int errorCode = -1; ///< of `DtStringError`, or -1
    long long count = 0;
    std::int32_t terms[2] = {};
};

Expected readWithRuntime(std::string text)
{
    Expected expected;
    char* position = nullptr;
    const char* token = strtok_r(text.data(), " ", &position);
    errno = 0;
    const long long count = token != nullptr ? std::strtoll(token, nullptr, 10) : 0;
    expected.count = errno == ERANGE ? 0 : count;
    for (int term = 0; term < 2; ++term)
    {
        token = strtok_r(nullptr, " ", &position);
        char* end = nullptr;
        errno = 0;
        const long long value = token != nullptr ? std::strtoll(token, &end, 10) : 0;
        const bool overflows = errno == ERANGE ||
                               value < std::numeric_limits<std::int32_t>::min() ||
                               value > std::numeric_limits<std::int32_t>::max();
        if (token == nullptr || end == token || overflows)
        {
            expected.errorCode = 2 * term + (overflows ? 1 : 0);
            return expected;
        }
        expected.terms[term] = static_cast<std::int32_t>(value);
    }
    return expected;
}

void checkDtString(const std::string& text)
{
    const Expected expected = text.empty() ? Expected{0} : readWithRuntime(text);
    try
    {
        const Kr::DtTime time = Kr::DtTimeUtil::getDtTimeFromDtString(text.c_str());
        require(expected.errorCode == -1 && time.getCount() == expected.count);
        require(time.getRate() == Kr::Rational(expected.terms[0], expected.terms[1]));
        const Kr::ArrayPtr<char> written(Kr::DtTimeUtil::getDtStringFromDtTime(time));
        const Kr::DtTime back = Kr::DtTimeUtil::getDtTimeFromDtString(written.get());
        require(back.getCount() == time.getCount());
        // Rates without an absolute value in 32 bits may change sign at each reading.
        require(back.isRateEqual(time) || time.getRate().getDenominator() < 0);
    }
    catch (const Kr::DtEx::DtStringError& error)
    {
        require(error.getErrorCode() == expected.errorCode);
    }
    catch (const Kr::RationalEx::ExDenominatorZero&)
    {
        require(expected.errorCode == -1 && expected.terms[1] == 0);
    }
    catch (const Kr::DtEx::BadRate&)
    {
        require(expected.errorCode == -1 && expected.terms[0] == 0);
    }
}

/// What is read is written again but for the sign of zero and leading zeros of the hours.
void checkTimeCode(const Kr::DtTimeCode& code, const std::string& text)
{
    try
    {
        const Kr::DtTimeIndex count = code.getCount(text.c_str());
        const std::string written = code.getText(count);
        require(code.getCount(written.c_str()) == count);
        const std::size_t colon = text.find(':');
        require(text.substr(colon) == written.substr(written.find(':')));
        require((text[0] == '-') == (count < 0) || count == 0);
    }
    catch (const Kr::DtEx::BadTimeCode& error)
    {
        require(std::strncmp(error.getReason(), "Time code '", 11) == 0);
    }
}

void checkCount(const Kr::DtTimeCode& code, const std::string& bytes)
{
    long long count = 0;
    std::memcpy(&count, bytes.data(), std::min(bytes.size(), sizeof(count)));
    require(code.getCount(code.getText(count).c_str()) == count);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Kr::DtTimeCode codes[] = {
        Kr::DtTimeCode(Kr::Rational(24, 1)), Kr::DtTimeCode(Kr::Rational(30000, 1001)),
        Kr::DtTimeCode(Kr::Rational(1000, 1)), Kr::DtTimeCode(Kr::Rational(60000, 1001)),
        Kr::DtTimeCode(Kr::Rational(2147483647, 1))};
    if (size == 0)
        return 0;
    // A terminator inside ends the text, as it does for the library.
    const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::string text(bytes.c_str());
    const Kr::DtTimeCode& code = codes[data[0] / 3 % std::size(codes)];
    switch (data[0] % 3)
    {
    case 0:
        checkDtString(text);
        break;
    case 1:
        checkTimeCode(code, text);
        break;
    default:
        checkCount(code, bytes);
    }
    return 0;
}
