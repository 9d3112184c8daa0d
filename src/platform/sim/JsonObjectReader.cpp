#include "platform/sim/JsonObjectReader.h"

#include <optional>
#include <utility>

#include "switching/NumberText.h"

namespace corvanel {
namespace {

// Deeper nesting than any log export uses; the limit keeps hostile input off the stack.
constexpr int maxDepth = 200;

class Reader {
  public:
    explicit Reader(std::string_view text) : text_(text) {}

    std::variant<JsonObject, JsonError> readTopLevel() {
        JsonObject object;
        skipWhitespace();
        if (!readObject(&object, 1)) return takeError();
        skipWhitespace();
        if (at_ != text_.size()) {
            fail("unexpected text after the object");
            return takeError();
        }
        return object;
    }

  private:
    bool fail(std::string reason) {
        if (!error_) error_ = JsonError{at_, std::move(reason)};
        return false;
    }
    JsonError takeError() { return error_ ? *error_ : JsonError{at_, "unreadable"}; }

    bool atEnd() const { return at_ >= text_.size(); }
    char peek() const { return text_[at_]; }

    void skipWhitespace() {
        while (!atEnd() && (peek() == ' ' || peek() == '\t' || peek() == '\r' || peek() == '\n'))
            ++at_;
    }

    bool expect(char c) {
        if (atEnd() || peek() != c) return fail(std::string("expected '") + c + "'");
        ++at_;
        return true;
    }

    // `into` receives the scalar members; nested objects pass nullptr and are only checked.
    bool readObject(JsonObject* into, int depth) {
        if (depth > maxDepth) return fail("nested too deeply");
        if (!expect('{')) return false;
        skipWhitespace();
        if (!atEnd() && peek() == '}') {
            ++at_;
            return true;
        }
        for (;;) {
            skipWhitespace();
            std::string name;
            if (atEnd() || peek() != '"') return fail("expected a member name");
            if (!readString(name)) return false;
            skipWhitespace();
            if (!expect(':')) return false;
            skipWhitespace();
            std::optional<JsonScalar> scalar;
            if (!readValue(depth, scalar)) return false;
            if (into && scalar) into->scalars.insert_or_assign(std::move(name), std::move(*scalar));
            skipWhitespace();
            if (atEnd()) return fail("unterminated object");
            if (peek() == ',') {
                ++at_;
                continue;
            }
            return expect('}');
        }
    }

    bool readArray(int depth) {
        if (depth > maxDepth) return fail("nested too deeply");
        if (!expect('[')) return false;
        skipWhitespace();
        if (!atEnd() && peek() == ']') {
            ++at_;
            return true;
        }
        for (;;) {
            skipWhitespace();
            std::optional<JsonScalar> ignored;
            if (!readValue(depth, ignored)) return false;
            skipWhitespace();
            if (atEnd()) return fail("unterminated array");
            if (peek() == ',') {
                ++at_;
                continue;
            }
            return expect(']');
        }
    }

    // A value; scalars come back in `scalar`, containers are checked and skipped.
    bool readValue(int depth, std::optional<JsonScalar>& scalar) {
        if (atEnd()) return fail("expected a value");
        switch (peek()) {
            case '{':
                return readObject(nullptr, depth + 1);
            case '[':
                return readArray(depth + 1);
            case '"': {
                std::string text;
                if (!readString(text)) return false;
                scalar = std::move(text);
                return true;
            }
            case 't':
                return readLiteral("true", scalar, true);
            case 'f':
                return readLiteral("false", scalar, false);
            case 'n':
                return readLiteral("null", scalar, nullptr);
            default:
                return readNumber(scalar);
        }
    }

    bool readLiteral(std::string_view word, std::optional<JsonScalar>& scalar, JsonScalar value) {
        if (text_.substr(at_, word.size()) != word) return fail("unknown literal");
        at_ += word.size();
        scalar = std::move(value);
        return true;
    }

    static bool isDigit(char c) { return c >= '0' && c <= '9'; }

    bool digits() {
        const std::size_t start = at_;
        while (!atEnd() && isDigit(peek()))
            ++at_;
        return at_ > start;
    }

    bool readNumber(std::optional<JsonScalar>& scalar) {
        const std::size_t start = at_;
        if (!atEnd() && peek() == '-') ++at_;
        if (atEnd() || !isDigit(peek())) return fail("expected a value");
        if (peek() == '0') {
            ++at_;
        } else {
            digits();
        }
        if (!atEnd() && peek() == '.') {
            ++at_;
            if (!digits()) return fail("expected digits after the decimal point");
        }
        if (!atEnd() && (peek() == 'e' || peek() == 'E')) {
            ++at_;
            if (!atEnd() && (peek() == '+' || peek() == '-')) ++at_;
            if (!digits()) return fail("expected exponent digits");
        }
        // The grammar is checked above, so a number that still does not convert is out of range.
        const std::optional<double> value = parseDecimal(text_.substr(start, at_ - start));
        if (!value) return fail("number out of range");
        scalar = *value;
        return true;
    }

    static void appendUtf8(std::string& out, char32_t c) {
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (c < 0x800) {
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            out += static_cast<char>(0xE0 | (c >> 12));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (c >> 18));
            out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }

    std::optional<char32_t> readHex4() {
        if (text_.size() - at_ < 4) {
            fail("short \\u escape");
            return std::nullopt;
        }
        char32_t value = 0;
        for (int i = 0; i < 4; ++i) {
            const char c = text_[at_++];
            value <<= 4;
            if (isDigit(c)) {
                value |= static_cast<char32_t>(c - '0');
            } else if (c >= 'a' && c <= 'f') {
                value |= static_cast<char32_t>(c - 'a' + 10);
            } else if (c >= 'A' && c <= 'F') {
                value |= static_cast<char32_t>(c - 'A' + 10);
            } else {
                fail("bad hex digit in \\u escape");
                return std::nullopt;
            }
        }
        return value;
    }

    // After "\u": one code point, joining a surrogate pair.
    bool readUnicodeEscape(std::string& out) {
        const auto first = readHex4();
        if (!first) return false;
        if (*first >= 0xDC00 && *first <= 0xDFFF) return fail("lone low surrogate");
        if (*first < 0xD800 || *first > 0xDBFF) {
            appendUtf8(out, *first);
            return true;
        }
        if (text_.substr(at_, 2) != "\\u") return fail("high surrogate without its pair");
        at_ += 2;
        const auto second = readHex4();
        if (!second) return false;
        if (*second < 0xDC00 || *second > 0xDFFF) return fail("high surrogate without its pair");
        appendUtf8(out, 0x10000 + ((*first - 0xD800) << 10) + (*second - 0xDC00));
        return true;
    }

    bool readString(std::string& out) {
        if (!expect('"')) return false;
        for (;;) {
            if (atEnd()) return fail("unterminated string");
            const char c = text_[at_++];
            if (c == '"') return true;
            if (static_cast<unsigned char>(c) < 0x20) return fail("control character in string");
            if (c != '\\') {
                out += c;
                continue;
            }
            if (atEnd()) return fail("unterminated string");
            switch (text_[at_++]) {
                case '"':
                    out += '"';
                    break;
                case '\\':
                    out += '\\';
                    break;
                case '/':
                    out += '/';
                    break;
                case 'b':
                    out += '\b';
                    break;
                case 'f':
                    out += '\f';
                    break;
                case 'n':
                    out += '\n';
                    break;
                case 'r':
                    out += '\r';
                    break;
                case 't':
                    out += '\t';
                    break;
                case 'u':
                    if (!readUnicodeEscape(out)) return false;
                    break;
                default:
                    --at_;
                    return fail("unknown escape");
            }
        }
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::optional<JsonError> error_;
};

}  // namespace

const std::string* JsonObject::text(std::string_view name) const {
    const auto found = scalars.find(name);
    if (found == scalars.end()) return nullptr;
    return std::get_if<std::string>(&found->second);
}

std::variant<JsonObject, JsonError> readJsonObject(std::string_view line) {
    return Reader(line).readTopLevel();
}

}  // namespace corvanel
