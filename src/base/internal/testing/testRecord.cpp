#include <base/internal/testing/testRecord.h>

#include <cstdlib>

namespace Kr
{

namespace
{

using Fields = std::vector<std::string>;

constexpr std::string_view special = "\\\t\n";
constexpr std::string_view codes = "\\tn";

std::string escape(const std::string& field)
{
    std::string escaped;
    for (const char c : field)
    {
        const std::size_t place = special.find(c);
        if (place == std::string_view::npos)
            escaped += c;
        else
            escaped.append({'\\', codes[place]});
    }
    return escaped;
}

std::string writeLine(const Fields& fields)
{
    std::string line;
    for (const std::string& field : fields)
        line += (line.empty() ? "" : "\t") + escape(field);
    return line + '\n';
}

Fields readLine(std::string_view line)
{
    Fields fields(1);
    for (std::size_t i = 0; i < line.size(); ++i)
        if (line[i] == '\t')
            fields.emplace_back();
        else if (line[i] == '\\' && i + 1 < line.size())
            fields.back() += special[codes.find(line[++i]) % special.size()];
        else
            fields.back() += line[i];
    fields.resize(8);
    return fields;
}

std::string toText(double seconds)
{
    return std::to_string(static_cast<long long>(seconds * 1e9));
}

long long toNumber(const std::string& text)
{
    return std::strtoll(text.c_str(), nullptr, 10);
}

TestResult readHead(const Fields& fields)
{
    TestResult result;
    result.group = fields[1];
    result.name = fields[2];
    result.state = static_cast<TestResult::State>(toNumber(fields[3]));
    result.seconds = static_cast<double>(toNumber(fields[4])) * 1e-9;
    result.checks = static_cast<std::uint64_t>(toNumber(fields[5]));
    result.skipReason = fields[6];
    return result;
}

void readPart(const Fields& fields, TestResult& result)
{
    if (fields[0] == "failure")
        result.failures.push_back({static_cast<TestFailure::Kind>(toNumber(fields[1])), fields[2],
                                   static_cast<int>(toNumber(fields[3])), fields[4]});
    else if (fields[0] == "message")
        result.messages.push_back(fields[1]);
    else if (fields[0] == "leak")
        result.leak = {toNumber(fields[1]), toNumber(fields[2]), toNumber(fields[3])};
}

} // namespace

std::string TestRecord::write(const TestResult& result)
{
    std::string text =
        writeLine({"test", result.group, result.name, std::to_string(result.state),
                   toText(result.seconds), std::to_string(result.checks), result.skipReason});
    for (const TestFailure& failure : result.failures)
        text += writeLine({"failure", std::to_string(failure.kind), failure.file,
                           std::to_string(failure.line), failure.text});
    for (const std::string& message : result.messages)
        text += writeLine({"message", message});
    text += writeLine({"leak", std::to_string(result.leak.blocks),
                       std::to_string(result.leak.bytes), std::to_string(result.leak.handles)});
    return text + writeLine({"end"});
}

std::vector<TestResult> TestRecord::read(std::string_view text)
{
    std::vector<TestResult> results;
    TestResult result;
    for (std::size_t end = 0; (end = text.find('\n')) != std::string_view::npos;
         text.remove_prefix(end + 1))
    {
        const Fields fields = readLine(text.substr(0, end));
        if (fields[0] == "test")
            result = readHead(fields);
        else if (fields[0] == "end")
            results.push_back(result);
        else
            readPart(fields, result);
    }
    return results;
}

} // namespace Kr
