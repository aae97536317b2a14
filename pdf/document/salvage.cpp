// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/document/salvage.h"

#include "pdf/document/referencetable.h"

#include <cctype>
#include <charconv>
#include <cstdio>
#include <map>
#include <sstream>

namespace pdf {

namespace {

/// Reads the text from its end.
class BackwardScanner
{
public:
    explicit BackwardScanner(std::string_view text) : rest(text) {}

    bool skipBlanks()
    {
        const std::size_t before = rest.size();
        while (!rest.empty() && std::isspace(static_cast<unsigned char>(rest.back())) != 0)
            rest.remove_suffix(1);
        return rest.size() < before;
    }
    /// -1 when there is no number, or none that objects have.
    int number()
    {
        constexpr int largest = 8388607; // of an object (ISO 32000-1, annex C)
        int value = 0;
        int weight = 1;
        const std::size_t before = rest.size();
        while (!rest.empty() && std::isdigit(static_cast<unsigned char>(rest.back())) != 0) {
            value += weight * (rest.back() - '0');
            if (weight > largest || value > largest)
                return -1;
            weight *= 10;
            rest.remove_suffix(1);
        }
        return rest.size() < before ? value : -1;
    }
    [[nodiscard]] std::size_t position() const { return rest.size(); }

private:
    std::string_view rest;
};

/// Behind the data of the stream whose object goes on at a place; the place itself when that is no
/// stream, or one whose length is not right. A PDF file that is attached without being compressed
/// has objects of its own in there.
std::size_t behindStreamData(std::string_view bytes, std::size_t place)
{
    constexpr std::string_view keyword = "stream";
    constexpr std::string_view lengthKey = "/Length ";
    // Up to the next object or to where this one ends.
    std::string_view dictionary = bytes.substr(place, bytes.find("obj", place + 3) - place);
    dictionary = dictionary.substr(0, dictionary.find(keyword));
    const std::size_t stream = place + dictionary.size();
    const std::size_t key = dictionary.find(lengthKey);
    if (key == dictionary.npos || bytes.compare(stream, keyword.size(), keyword) != 0)
        return place;
    std::size_t length = 0;
    const std::string_view digits = dictionary.substr(key + lengthKey.size());
    std::from_chars(digits.data(), digits.data() + digits.size(), length);
    const std::size_t data = stream + keyword.size();
    if (length > bytes.size() - data)
        return place;
    // Line ends stand around the data.
    const bool isEnd = bytes.substr(data + length, 16).find("endstream") != bytes.npos;
    return isEnd ? data + length : place;
}

/// Where the objects begin that the text defines; of one defined several times the last counts.
std::map<QPDFObjGen, std::size_t> objectOffsets(std::string_view bytes)
{
    std::map<QPDFObjGen, std::size_t> offsets;
    for (std::size_t i = bytes.find("obj"); i != bytes.npos; i = bytes.find("obj", i + 1)) {
        BackwardScanner scanner(bytes.substr(0, i));
        scanner.skipBlanks();
        const int generation = scanner.number();
        if (generation < 0 || generation > 65535 || !scanner.skipBlanks())
            continue;
        const int number = scanner.number();
        if (number <= 0)
            continue;
        offsets[QPDFObjGen(number, generation)] = scanner.position();
        i = behindStreamData(bytes, i);
    }
    return offsets;
}

/// The object from its text, which may have comments behind it. Null when it is not readable.
QPDFObjectHandle parseObject(QPDF &pdf, const std::string &text)
{
    try {
        QPDFObjectHandle holder = QPDFObjectHandle::parse(&pdf, "[" + text + "\n]");
        QPDFObjectHandle object = holder.getArrayItem(0);
        return object.isIndirect() ? QPDFObjectHandle::newNull() : object;
    } catch (const std::exception &) {
        return QPDFObjectHandle::newNull();
    }
}

void addObjectsOf(QPDF &pdf, QPDFObjectHandle stream)
{
    const std::shared_ptr<Buffer> buffer = stream.getStreamData();
    const std::string data(reinterpret_cast<const char *>(buffer->getBuffer()), buffer->getSize());
    const auto first = static_cast<std::size_t>(stream.getDict().getKey("/First").getUIntValue());
    std::istringstream header(data.substr(0, first));
    std::map<std::size_t, int> numbers; // by the objects' places in the stream
    int number = 0;
    std::size_t offset = 0;
    while (header >> number >> offset)
        numbers[first + offset] = number;
    for (auto entry = numbers.begin(); entry != numbers.end(); ++entry) {
        const auto next = std::next(entry);
        const std::size_t end = next == numbers.end() ? data.size() : next->first;
        const QPDFObjGen object(entry->second, 0);
        if (entry->first >= data.size() || entry->second <= 0)
            continue;
        QPDFObjectHandle value = parseObject(pdf, data.substr(entry->first, end - entry->first));
        if (!value.isNull() && pdf.getObject(object).isNull())
            pdf.replaceObject(object, value);
    }
}

} // namespace

std::string salvagedFile(std::string_view bytes)
{
    const std::size_t header = bytes.find("%PDF-");
    if (header == bytes.npos || bytes.find("/Encrypt") != bytes.npos)
        return {};
    bytes.remove_prefix(header);
    const std::map<QPDFObjGen, std::size_t> offsets = objectOffsets(bytes);
    if (offsets.empty())
        return {};
    const int root = offsets.rbegin()->first.getObj() + 1;
    std::string file(bytes);
    file += streamEnd;
    const std::size_t rootOffset = file.size();
    file += std::to_string(root) + " 0 obj << /Type /Catalog >> endobj\n";
    const std::size_t table = file.size();
    file += "xref\n0 1\n0000000000 65535 f \n";
    const auto add = [&file](QPDFObjGen object, std::size_t offset) {
        char entry[64];
        std::snprintf(entry, sizeof entry, "%d 1\n%010zu %05d n \n", object.getObj(), offset,
                      object.getGen());
        file += entry;
    };
    for (const auto &[object, offset] : offsets)
        add(object, offset);
    add(QPDFObjGen(root, 0), rootOffset);
    file += "trailer << /Size " + std::to_string(root + 1) + " /Root " + std::to_string(root) +
            " 0 R >>\nstartxref\n" + std::to_string(table) + "\n%%EOF\n";
    return file;
}

void findLostObjects(QPDF &salvaged)
{
    for (QPDFObjectHandle &object : salvaged.getAllObjects()) {
        try {
            if (object.isStreamOfType("/ObjStm"))
                addObjectsOf(salvaged, object);
        } catch (const QPDFExc &) {
            // What cannot be unpacked stays lost.
        }
    }
    for (QPDFObjectHandle &object : salvaged.getAllObjects()) {
        if (object.isDictionaryOfType("/Catalog") && object.getKey("/Pages").isDictionary())
            salvaged.getTrailer().replaceKey("/Root", object);
    }
}

} // namespace pdf
