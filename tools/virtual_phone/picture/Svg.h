#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orbelantine::phone {

/// Writes an XML document element by element. All text is escaped and every element closed, so
/// that the result is well-formed whatever is put in.
class SvgWriter {
  public:
    struct Attribute {
        Attribute(std::string_view attributeName, std::string_view text)
            : name(attributeName)
            , value(text) {}

        Attribute(std::string_view attributeName, const char* text)
            : name(attributeName)
            , value(text) {}

        Attribute(std::string_view attributeName, double number);

        Attribute(std::string_view attributeName, int number)
            : Attribute(attributeName, static_cast<double>(number)) {}

        std::string_view name;
        std::string value;
    };

    using Attributes = std::initializer_list<Attribute>;

    /// Element and attribute names are the caller's own, valid ones; `element` outlives the writer.
    SvgWriter& open(std::string_view element, Attributes attributes);
    SvgWriter& close();
    SvgWriter& leaf(std::string_view element, Attributes attributes);
    /// An element that holds just this text.
    SvgWriter& text(std::string_view element, Attributes attributes, std::string_view content);
    /// Text within the element that is open.
    SvgWriter& content(std::string_view text);

    /// The document, with whatever is still open closed.
    [[nodiscard]] std::string finish();

  private:
    void endLine();
    void start(std::string_view element, Attributes attributes, std::string_view end);

    std::string mDocument;
    std::vector<std::string_view> mOpen;
};

/// With one digit behind the point at most, as SVG wants it in any locale.
[[nodiscard]] std::string svgNumber(double number);

} // namespace orbelantine::phone
