#include "ZELKBinaryListGuard.h"

#include "ZELKListLimits.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace {

constexpr std::size_t headerSize = 8;
constexpr std::size_t trailerSize = 32;

enum class Kind { Scalar, Text, Array, Dictionary };

/// One entry of the object table, its lengths checked against the file.
struct Object
{
    Kind kind = Kind::Scalar;
    /// Elements of an array, pairs of a dictionary, else bytes.
    std::uint64_t count = 0;
    /// Where its references start.
    std::size_t body = 0;

    bool isContainer() const { return kind == Kind::Array || kind == Kind::Dictionary; }
    std::uint64_t references() const
    {
        return kind == Kind::Dictionary ? 2 * count : kind == Kind::Array ? count : 0;
    }
};

/// What an object unfolds to. A depth of 0 is one that was not looked at yet.
struct Extent
{
    std::uint64_t values = 0;
    std::uint64_t bytes = 0;
    std::uint32_t depth = 0;
    bool isOpen = false;
};

struct Step
{
    std::size_t index;
    Object object;
    std::uint64_t next = 0;
    Extent sum = {};
};

class BinaryWalk
{
public:
    explicit BinaryWalk(std::string_view bytes)
        : m_bytes(bytes)
    {
    }

    QString objection()
    {
        if (!readTrailer())
            return QStringLiteral("The binary property list is damaged.");
        m_extents.resize(m_objects);
        return walk();
    }

private:
    /// Big-endian; the caller has seen to the bounds.
    std::uint64_t number(std::size_t at, std::size_t size) const
    {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < size; ++i)
            value = value << 8 | std::uint8_t(m_bytes[at + i]);
        return value;
    }

    bool readTrailer()
    {
        if (m_bytes.size() < headerSize + trailerSize || !m_bytes.starts_with("bplist00"))
            return false;
        const std::size_t trailer = m_bytes.size() - trailerSize;
        m_offsetSize = number(trailer + 6, 1);
        m_referenceSize = number(trailer + 7, 1);
        m_objects = number(trailer + 8, 8);
        m_root = number(trailer + 16, 8);
        m_table = number(trailer + 24, 8);
        return m_offsetSize >= 1 && m_offsetSize <= 8 && m_referenceSize >= 1 && m_referenceSize <= 8 &&
               m_root < m_objects && m_table >= headerSize && m_table <= trailer &&
               m_objects <= (trailer - m_table) / m_offsetSize;
    }

    std::optional<Object> object(std::size_t index) const
    {
        const std::uint64_t at = number(m_table + index * m_offsetSize, m_offsetSize);
        if (at < headerSize || at >= m_table)
            return std::nullopt;
        const auto marker = std::uint8_t(m_bytes[at]);
        return (marker & 0xf0) < 0x40 ? fixedSize(at, marker) : counted(at, marker);
    }

    /// Booleans, integers, reals and dates; only in the sizes that the library can read.
    std::optional<Object> fixedSize(std::size_t at, std::uint8_t marker) const
    {
        const bool isBoolean = marker == 0x08 || marker == 0x09;
        const bool isInteger = marker >= 0x10 && marker <= 0x14;
        const bool isReal = marker == 0x22 || marker == 0x23;
        if (!isBoolean && !isInteger && !isReal && marker != 0x33)
            return std::nullopt;
        const std::uint64_t size = isBoolean ? 0 : std::uint64_t(1) << (marker & 0x0f);
        return size <= m_table - at - 1 ? std::optional<Object>({Kind::Scalar, size, at + 1}) : std::nullopt;
    }

    std::optional<Object> counted(std::size_t at, std::uint8_t marker) const
    {
        Object object;
        object.count = marker & 0x0f;
        object.body = at + 1;
        if (object.count == 0x0f && !readCount(object))
            return std::nullopt;
        std::uint64_t itemSize = 1;
        switch (marker & 0xf0) {
        case 0x40:
            break;
        case 0x50:
            object.kind = Kind::Text;
            break;
        case 0x60:
            object.kind = Kind::Text;
            itemSize = 2;
            break;
        case 0xa0:
            object.kind = Kind::Array;
            itemSize = m_referenceSize;
            break;
        case 0xd0:
            object.kind = Kind::Dictionary;
            itemSize = 2 * m_referenceSize;
            break;
        default:
            return std::nullopt;
        }
        if (object.count > (m_table - object.body) / itemSize || holdsNul(object, itemSize))
            return std::nullopt;
        return object;
    }

    bool readCount(Object &object) const
    {
        if (object.body >= m_table || (std::uint8_t(m_bytes[object.body]) & 0xfc) != 0x10)
            return false;
        const std::size_t size = std::size_t(1) << (m_bytes[object.body] & 0x03);
        if (size > m_table - object.body - 1)
            return false;
        object.count = number(object.body + 1, size);
        object.body += 1 + size;
        return true;
    }

    /// The library would end the text there.
    bool holdsNul(const Object &object, std::size_t unitSize) const
    {
        if (object.kind != Kind::Text)
            return false;
        const std::string_view text = m_bytes.substr(object.body, object.count * unitSize);
        if (unitSize == 1)
            return text.find('\0') != std::string_view::npos;
        for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
            if (text[i] == '\0' && text[i + 1] == '\0')
                return true;
        }
        return false;
    }

    /// Depth first over the references, without recursion. What one object unfolds to is worked out once.
    QString walk()
    {
        QString fault = enter(m_root);
        while (fault.isEmpty() && !m_steps.empty()) {
            Step &step = m_steps.back();
            fault = step.next < step.object.references() ? follow(step) : leave();
        }
        return fault;
    }

    QString enter(std::size_t index)
    {
        const auto found = object(index);
        if (!found)
            return QStringLiteral("The binary property list holds a damaged value.");
        m_steps.push_back({index, *found});
        m_extents[index].isOpen = true;
        if (m_steps.size() > ZELKListLimits::deepestLevel + 1)
            return QStringLiteral("The property list is nested too deeply.");
        return {};
    }

    QString follow(Step &step)
    {
        const std::size_t at = step.object.body + step.next * m_referenceSize;
        const std::uint64_t index = number(at, m_referenceSize);
        if (index >= m_objects)
            return QStringLiteral("The binary property list holds a damaged value.");
        const Extent &extent = m_extents[index];
        if (extent.isOpen)
            return QStringLiteral("The property list holds itself.");
        if (extent.depth == 0)
            return enter(index);
        const bool isKey = step.object.kind == Kind::Dictionary && step.next < step.object.count;
        if (isKey && object(index).value_or(Object()).kind != Kind::Text)
            return QStringLiteral("A dictionary's key is not a text.");
        step.sum.values += isKey ? 0 : extent.values;
        step.sum.bytes += extent.bytes;
        step.sum.depth = std::max(step.sum.depth, extent.depth);
        ++step.next;
        return checkSum(step.sum);
    }

    /// A container's own values and bytes are added to those of its elements; only containers are levels.
    QString leave()
    {
        const Step step = m_steps.back();
        m_steps.pop_back();
        Extent &extent = m_extents[step.index];
        extent.values = step.sum.values + 1;
        extent.bytes = step.sum.bytes + (step.object.isContainer() ? 0 : 2 * step.object.count);
        extent.depth = step.sum.depth + 1;
        extent.isOpen = false;
        return checkSum(extent);
    }

    QString checkSum(const Extent &extent) const
    {
        if (extent.values > ZELKListLimits::mostValues)
            return QStringLiteral("The property list holds too many values.");
        if (extent.bytes > ZELKListLimits::mostUnfoldedBytes + 4 * m_bytes.size())
            return QStringLiteral("The property list unfolds to too many bytes.");
        if (extent.depth > ZELKListLimits::deepestLevel)
            return QStringLiteral("The property list is nested too deeply.");
        return {};
    }

    std::string_view m_bytes;
    std::size_t m_offsetSize = 0;
    std::size_t m_referenceSize = 0;
    std::uint64_t m_objects = 0;
    std::uint64_t m_root = 0;
    std::uint64_t m_table = 0;
    std::vector<Extent> m_extents;
    std::vector<Step> m_steps;
};

} // namespace

QString ZELKBinaryListGuard::objectionTo(std::string_view bytes)
{
    return BinaryWalk(bytes).objection();
}
