// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>
#include <zlib.h>

/// Writes a large batch of invoices as one PDF file, for measuring: documents of 1 to 9 pages, each
/// with its own invoice number at one place of every page, about 3,400 glyphs and five objects a
/// page; or all of the same number of pages. The same arguments give the same bytes.
///
/// Usage: make_invoices OUT [PAGES [PAGES-A-DOCUMENT]]
namespace {

class Random
{
public:
    unsigned below(unsigned limit)
    {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<unsigned>(state >> 33) % limit;
    }

private:
    unsigned long long state = 42;
};

class PdfFile
{
public:
    explicit PdfFile(const char *path) : file(std::fopen(path, "wb"))
    {
        append("%PDF-1.4\n%\xE2\xE3\xCF\xD3\n");
    }
    ~PdfFile() { close(); }
    PdfFile(const PdfFile &) = delete;
    PdfFile &operator=(const PdfFile &) = delete;

    int reserve()
    {
        offsets.push_back(0);
        return static_cast<int>(offsets.size());
    }
    void define(int number, const std::string &body)
    {
        offsets[static_cast<std::size_t>(number) - 1] = position;
        append(std::to_string(number) + " 0 obj\n" + body + "\nendobj\n");
    }
    int add(const std::string &body)
    {
        const int number = reserve();
        define(number, body);
        return number;
    }
    int addStream(const std::string &data)
    {
        uLongf size = compressBound(data.size());
        std::string packed(size, '\0');
        compress(reinterpret_cast<Bytef *>(packed.data()), &size,
                 reinterpret_cast<const Bytef *>(data.data()), data.size());
        packed.resize(size);
        return add("<< /Length " + std::to_string(size) + " /Filter /FlateDecode >>\nstream\n" +
                   packed + "\nendstream");
    }
    void finish(int catalog)
    {
        const unsigned long start = position;
        append("xref\n0 " + std::to_string(offsets.size() + 1) + "\n0000000000 65535 f \n");
        for (const unsigned long offset : offsets) {
            char line[24];
            std::snprintf(line, sizeof line, "%010lu 00000 n \n", offset);
            append(line);
        }
        append("trailer\n<< /Size " + std::to_string(offsets.size() + 1) + " /Root " +
               std::to_string(catalog) + " 0 R >>\nstartxref\n" + std::to_string(start) +
               "\n%%EOF\n");
    }
    /// Whether every byte was written; closes the file.
    bool close()
    {
        if (file != nullptr && std::fclose(file) != 0)
            isGood = false;
        file = nullptr;
        return isGood;
    }

private:
    void append(const std::string &bytes)
    {
        position += bytes.size();
        isGood = isGood && file != nullptr &&
                 std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    }

    std::FILE *file;
    std::vector<unsigned long> offsets;
    unsigned long position = 0;
    bool isGood = true;
};

std::string text(double x, double y, const char *font, int size, const std::string &string)
{
    char start[96];
    std::snprintf(start, sizeof start, "BT /%s %d Tf %.2f %.2f Td (", font, size, x, y);
    return start + string + ") Tj ET\n";
}

std::string words(Random &random, std::size_t length)
{
    static const char *const stock[] = {"steel",  "bracket", "delivery", "per",   "month",
                                        "repair", "hours",   "cable",    "metre", "set of",
                                        "paint",  "service", "and",      "small", "parts"};
    std::string result = stock[random.below(15)];
    while (result.size() < length)
        result += std::string(" ") + stock[random.below(15)];
    result.resize(length);
    return result;
}

std::string contents(Random &random, int invoice, int page, int pages)
{
    char number[32];
    std::snprintf(number, sizeof number, "INV-%06d", invoice);
    std::string result = text(56, 780, "F2", 18, "Example Trading Company");
    result += text(400, 780, "F1", 10, "Invoice");
    result += text(480, 780, "F2", 11, number);
    result +=
        text(400, 764, "F1", 10, "Page " + std::to_string(page) + " of " + std::to_string(pages));
    result += text(56, 730, "F1", 10, "Customer " + std::to_string(invoice * 7 % 9973));
    for (int row = 0; row < 52; ++row) {
        const double y = 690 - row * 12.0;
        result += text(56, y, "F1", 8, std::to_string(row + 1));
        result += text(80, y, "F1", 8, words(random, 45));
        result += text(330, y, "F1", 8, std::to_string(random.below(90) + 10));
        result += text(400, y, "F1", 8, std::to_string(random.below(9000) + 1000) + ".00");
        result += text(480, y, "F1", 8, std::to_string(random.below(90000) + 10000) + ".00");
    }
    return result;
}

std::string reference(int number)
{
    return std::to_string(number) + " 0 R";
}

std::string font(const char *name)
{
    return std::string("<< /Type /Font /Subtype /Type1 /Encoding /WinAnsiEncoding /BaseFont /") +
           name + " >>";
}

bool writeInvoices(const char *path, int pageCount, int pagesPerDocument)
{
    constexpr int pagesPerNode = 100;
    PdfFile file(path);
    Random random;
    const int regular = file.add(font("Helvetica"));
    const int bold = file.add(font("Helvetica-Bold"));
    const int root = file.reserve();
    std::vector<std::vector<int>> nodes;
    std::vector<int> nodeNumbers;
    int invoice = 100000;
    int page = 0;
    int pages = 0;
    for (int i = 0; i < pageCount; ++i) {
        if (page == pages) {
            ++invoice;
            page = 0;
            pages = pagesPerDocument > 0 ? pagesPerDocument : 1 + static_cast<int>(random.below(9));
        }
        if (i % pagesPerNode == 0) {
            nodes.emplace_back();
            nodeNumbers.push_back(file.reserve());
        }
        ++page;
        const int number = file.reserve();
        const int stream = file.addStream(contents(random, invoice, page, pages));
        const int state = file.add("<< /Type /ExtGState /LW 1 >>");
        const int resources =
            file.add("<< /Font << /F1 " + reference(regular) + " /F2 " + reference(bold) +
                     " >> /ExtGState << /G " + reference(state) + " >> >>");
        const int link = file.add("<< /Type /Annot /Subtype /Link /Rect [56 40 200 52] /Border "
                                  "[0 0 0] /A << /S /URI /URI (https://example.com/" +
                                  std::to_string(invoice) + ") >> >>");
        file.define(number, "<< /Type /Page /Parent " + reference(nodeNumbers.back()) +
                                " /MediaBox [0 0 595 842] /Resources " + reference(resources) +
                                " /Contents " + reference(stream) + " /Annots [" + reference(link) +
                                "] >>");
        nodes.back().push_back(number);
    }
    const auto references = [](const std::vector<int> &numbers) {
        std::string result;
        for (const int number : numbers)
            result += reference(number) + " ";
        return result;
    };
    for (std::size_t i = 0; i < nodes.size(); ++i)
        file.define(nodeNumbers[i], "<< /Type /Pages /Parent " + reference(root) + " /Count " +
                                        std::to_string(nodes[i].size()) + " /Kids [" +
                                        references(nodes[i]) + "] >>");
    file.define(root, "<< /Type /Pages /Count " + std::to_string(pageCount) + " /Kids [" +
                          references(nodeNumbers) + "] >>");
    file.finish(file.add("<< /Type /Catalog /Pages " + reference(root) + " >>"));
    return file.close();
}

} // namespace

int main(int argc, char *argv[])
{
    const int pageCount = argc > 2 ? std::atoi(argv[2]) : 5000;
    const int pagesPerDocument = argc > 3 ? std::atoi(argv[3]) : 0; // 0: 1 to 9
    if (argc < 2 || argc > 4 || pageCount < 1) {
        std::fprintf(stderr, "usage: make_invoices OUT [PAGES [PAGES-A-DOCUMENT]]\n");
        return 2;
    }
    if (!writeInvoices(argv[1], pageCount, pagesPerDocument)) {
        std::fprintf(stderr, "make_invoices: cannot write %s\n", argv[1]);
        return 5;
    }
    return 0;
}
