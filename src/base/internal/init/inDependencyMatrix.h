#pragma once

/// @file
/// Internal to the initialisation manager: which package needs which.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Kr
{

/// A square matrix of bits: row i, column j is set when i needs j. Rows are kept as words, so that
/// the closure takes one pass over a row for each dependency instead of a cube.
class InDependencyMatrix
{
public:
    explicit InDependencyMatrix(std::size_t size = 0);

    std::size_t getSize() const { return _size; }
    bool needs(std::size_t i, std::size_t j) const;
    void set(std::size_t i, std::size_t j);

    /// Whether any index needs itself.
    bool hasCycle() const;

    /// Closes the relation transitively. Returns, for each row, how many columns other than its own
    /// were set on the way.
    std::vector<std::int32_t> close();

    /// Takes an index out; those above it move down by one.
    void remove(std::size_t index);

private:
    using Word = std::uint64_t;
    using Indices = std::vector<std::size_t>;

    static constexpr std::size_t wordBits = 64;

    Word* row(std::size_t i) { return _words.data() + i * _rowWords; }
    const Word* row(std::size_t i) const { return _words.data() + i * _rowWords; }
    void merge(std::size_t into, std::size_t from);
    std::int32_t countOthers(std::size_t i) const;
    Indices columns(std::size_t i) const;
    void closeLoops(const Indices& looped);

    std::size_t _size;
    std::size_t _rowWords;
    std::vector<Word> _words;
};

} // namespace Kr
