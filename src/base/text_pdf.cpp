#include "base/text_pdf.h"

#include <vector>

#include "base/number_text.h"
#include "base/text.h"
#include "base/utf8.h"

namespace zentaq {

namespace {

// A4 on its side, in points. Letter is broader and lower: what is printed stands in the part that both have.
constexpr int paperWidth = 842;
constexpr int paperHeight = 595;
constexpr int margin = 36;
constexpr double fontSize = 8;
constexpr double leading = 9.6;

/// A string of the document: Latin-1, with its own signs escaped.
std::string pdfString(std::string_view utf8) {
    std::string latin;
    while (!utf8.empty()) {
        const Character character = firstCharacter(utf8);
        utf8.remove_prefix(character.length);
        const bool printable = character.code >= 0x20 && character.code <= 0xFF &&
                               (character.code < 0x7F || character.code >= 0xA0);
        const char byte = printable ? static_cast<char>(static_cast<unsigned char>(character.code)) : '?';
        if (byte == '(' || byte == ')' || byte == '\\') latin += '\\';
        latin += byte;
    }
    return "(" + latin + ")";
}

std::string reference(int object) {
    return numberText(object) + " 0 R";
}

/// Numbered objects, and where each of them begins.
class Document {
 public:
    /// The number of the next object.
    int next() const { return static_cast<int>(offsets_.size()) + 1; }
    void object(std::string_view content) {
        offsets_.push_back(text_.size());
        text_ += numberText(static_cast<int>(offsets_.size())) + " 0 obj\n";
        text_ += content;
        text_ += "\nendobj\n";
    }
    std::string end(int root, int info) {
        const std::string count = numberText(next());
        const std::string table = numberText(static_cast<double>(text_.size()));
        text_ += "xref\n0 " + count + "\n0000000000 65535 f \n";
        for (const std::size_t offset : offsets_)
            text_ += formatNumber(static_cast<double>(offset), "0000000000") + " 00000 n \n";
        text_ += "trailer\n<< /Size " + count + " /Root " + reference(root) + " /Info " + reference(info) +
                 " >>\nstartxref\n" + table + "\n%%EOF\n";
        return std::move(text_);
    }

 private:
    std::string text_ = "%PDF-1.4\n";
    std::vector<std::size_t> offsets_;
};

std::string pageContent(std::string_view page) {
    std::string content = "BT /F1 " + numberText(fontSize) + " Tf " + numberText(leading) + " TL " +
                          numberText(margin) + " " + numberText(paperHeight - margin - fontSize) + " Td\n";
    for (const std::string& line : split(page, '\n')) content += pdfString(line) + " Tj T*\n";
    return content + "ET";
}

}  // namespace

std::string textPdf(std::string_view text, std::string_view title) {
    constexpr int catalog = 1;
    constexpr int tree = 2;
    constexpr int font = 3;
    constexpr int info = 4;
    constexpr int firstPage = 5;
    const std::vector<std::string> pages = split(text, '\f');
    std::string kids;
    for (std::size_t i = 0; i < pages.size(); ++i)
        kids += reference(firstPage + 2 * static_cast<int>(i)) + " ";
    Document document;
    document.object("<< /Type /Catalog /Pages " + reference(tree) + " >>");
    document.object("<< /Type /Pages /Kids [" + kids + "] /Count " +
                    numberText(static_cast<int>(pages.size())) + " >>");
    document.object("<< /Type /Font /Subtype /Type1 /BaseFont /Courier /Encoding /WinAnsiEncoding >>");
    document.object("<< /Title " + pdfString(title) + " /Producer (Zentaq4) >>");
    for (const std::string& page : pages) {
        document.object("<< /Type /Page /Parent " + reference(tree) + " /MediaBox [0 0 " +
                        numberText(paperWidth) + " " + numberText(paperHeight) + "] /Contents " +
                        reference(document.next() + 1) + " /Resources << /Font << /F1 " + reference(font) +
                        " >> >> >>");
        const std::string content = pageContent(page);
        document.object("<< /Length " + numberText(static_cast<int>(content.size())) + " >>\nstream\n" +
                        content + "\nendstream");
    }
    return document.end(catalog, info);
}

}  // namespace zentaq
