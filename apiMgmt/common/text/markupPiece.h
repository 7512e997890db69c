#pragma once

#include <string_view>

/// The pieces that an XML text is made of, one after the other, without a parser: so that also a
/// document that no parser takes can be shown with its secrets masked.
///
///     text::firstPiece("<a x='>'>text</a>")    // Start, "<a x='>'>", named "a"
namespace text {

struct MarkupPiece {
    enum class Kind {
        Text,    // what stands between two tags
        Start,   // <name ...>
        Empty,   // <name .../>
        End,     // </name>
        Other,   // declaration, processing instruction, comment, document type
        Cdata,   // <![CDATA[...]]>
        Broken,  // begins with "<" and does not end
    };

    Kind kind;
    std::string_view text;  // the whole piece; the rest of the document when it is broken
    std::string_view name;  // of a tag, with its prefix; also of a broken one
};

/// The name of the tag that `rest`, which begins with "<", begins with; of an end tag none.
std::string_view tagName(std::string_view rest);

/// What `rest` begins with; `rest` must not be empty. The views point into it.
MarkupPiece firstPiece(std::string_view rest);

}  // namespace text
