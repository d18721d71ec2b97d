#include "hosts/apply/xml_walk.h"

#include <expat.h>

#include <exception>
#include <memory>

#include "instruments/spectra/input_error.h"
#include "instruments/spectra/input_file.h"

namespace tof::apply {
namespace {

using spectra::InputError;

constexpr std::size_t kPieceBytes = 1U << 18U;

// Hands the parser's calls on. An exception must not pass through the parser, which is written in
// C: it is kept, and raised again behind it.
class Walk {
 public:
  Walk(std::string source, XmlListener& listener)
      : source_(std::move(source)),
        listener_(listener),
        parser_(XML_ParserCreate(nullptr), XML_ParserFree) {
    if (parser_ == nullptr) throw std::bad_alloc();
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(parser_.get(), &Walk::Start, &Walk::End);
  }

  void Parse(std::string_view bytes, bool is_last) {
    const auto length = static_cast<int>(bytes.size());
    const XML_Status status = XML_Parse(parser_.get(), bytes.data(), length, is_last ? 1 : 0);
    if (error_) std::rethrow_exception(error_);
    if (status == XML_STATUS_OK) return;
    throw InputError(
        {source_, XML_GetCurrentLineNumber(parser_.get()),
         XML_GetCurrentColumnNumber(parser_.get()) + 1},
        std::string("malformed XML (") + XML_ErrorString(XML_GetErrorCode(parser_.get())) + ")",
        "a well-formed document");
  }

 private:
  template <class Call>
  void Keep(Call call) {
    try {
      call();
    } catch (...) {
      error_ = std::current_exception();
      XML_StopParser(parser_.get(), XML_FALSE);
    }
  }

  static void Start(void* user, const XML_Char* name, const XML_Char** attributes) {
    Walk& walk = *static_cast<Walk*>(user);
    walk.Keep([&] {
      Attributes pairs;
      for (; *attributes != nullptr; attributes += 2)
        pairs.emplace_back(attributes[0], attributes[1]);
      walk.listener_.OnStart(name, pairs, walk.Place());
    });
  }
  static void End(void* user, const XML_Char* name) {
    Walk& walk = *static_cast<Walk*>(user);
    walk.Keep([&] { walk.listener_.OnEnd(name, walk.Place()); });
  }

  TagPlace Place() const {
    const auto begin = static_cast<std::uint64_t>(XML_GetCurrentByteIndex(parser_.get()));
    return {begin, begin + static_cast<std::uint64_t>(XML_GetCurrentByteCount(parser_.get())),
            XML_GetCurrentLineNumber(parser_.get()), XML_GetCurrentColumnNumber(parser_.get()) + 1};
  }

  std::string source_;
  XmlListener& listener_;
  std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser_;
  std::exception_ptr error_;
};

}  // namespace

void WalkXml(const std::filesystem::path& path, XmlListener& listener) {
  std::ifstream in = spectra::OpenForReading(path);
  Walk walk(path.string(), listener);
  std::string piece(kPieceBytes, '\0');
  bool is_first = true;
  do {
    in.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    const std::string_view bytes(piece.data(), static_cast<std::size_t>(in.gcount()));
    // UTF-16, with or without its mark.
    if (is_first && (bytes.starts_with("\xff\xfe") || bytes.starts_with("\xfe\xff") ||
                     bytes.substr(0, 4).find('\0') != std::string_view::npos)) {
      throw InputError({path.string()}, "text in UTF-16", "UTF-8 or an encoding of single bytes");
    }
    is_first = false;
    listener.OnBytes(bytes);
    walk.Parse(bytes, in.eof());
    if (in.bad()) throw InputError({path.string()}, "a read that failed", "a readable file");
  } while (!in.eof());
}

}  // namespace tof::apply
