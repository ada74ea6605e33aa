#include "arbor/formats/open_file.h"

#include <gtest/gtest.h>
#include <zlib.h>
#include <zstd.h>

#include "arbor/csv/table_error.h"
#include "arbor/formats/read_ahead.h"
#include "tests/support/byte_sources.h"
#include "tests/support/tables.h"

namespace arbor::tests {
namespace {

using namespace std::string_literals;

std::string gzip(const std::string& text) {
  ::z_stream stream{};
  deflateInit2(&stream, 1, Z_DEFLATED, MAX_WBITS + 16, 9, Z_DEFAULT_STRATEGY);
  std::string bytes(deflateBound(&stream, text.size()) + 32, '\0');
  std::string copy = text;
  stream.next_in = reinterpret_cast<unsigned char*>(copy.data());
  stream.avail_in = static_cast<unsigned int>(copy.size());
  stream.next_out = reinterpret_cast<unsigned char*>(bytes.data());
  stream.avail_out = static_cast<unsigned int>(bytes.size());
  EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
  bytes.resize(stream.total_out);
  deflateEnd(&stream);
  return bytes;
}

std::string zstd(const std::string& text) {
  const std::unique_ptr<::ZSTD_CCtx, std::size_t (*)(::ZSTD_CCtx*)> context(ZSTD_createCCtx(),
                                                                            ZSTD_freeCCtx);
  ZSTD_CCtx_setParameter(context.get(), ZSTD_c_checksumFlag, 1);
  std::string bytes(ZSTD_compressBound(text.size()), '\0');
  bytes.resize(ZSTD_compress2(context.get(), bytes.data(), bytes.size(), text.data(), text.size()));
  return bytes;
}

// The text of a file, or what it is refused with, without its path.
std::string text_of_file(const std::string& contents, const tree::expansion_limit& limit = {}) {
  std::string text;
  const std::string error = refusal(contents, [&](const std::string& path) {
    const auto file = tree::open_file(path, limit);
    text = all_of(*file);
  });
  return error.empty() ? text : error;
}

std::string table_text() {
  std::string text;
  for (unsigned int i = 0; i < 100000; ++i) text += std::to_string(i * 2654435761U) + ",x\n";
  return text;
}

TEST(OpenFile, RecognisesAFormatByItsFirstBytes) {
  const std::string large = table_text();
  const std::string skippable = "\x5A\x2A\x4D\x18\3\0\0\0abc"s;
  const std::vector<std::pair<std::string, std::string>> files{
      {"", ""},
      {"P", "P"},
      {large, large},
      {gzip(""), ""},
      {gzip(large), large},
      {gzip("a") + gzip("") + gzip(large) + std::string(70000, '\0'), "a" + large},
      {gzip("a") + "b", ": damaged gzip data: other bytes follow it"},
      {gzip("a") + "\0"s + gzip("b"), ": damaged gzip data: other bytes follow it"},
      {zstd(""), ""},
      {zstd(large), large},
      {skippable + zstd("a") + skippable + zstd(large), "a" + large},
      {zstd("a") + "bcdef", ": damaged zstd data: Unknown frame descriptor"},
      {"\x28\xB5\x2F\xFD\0\xC0\0\0\0"s,
       ": zstd data that takes more than 128 MiB to decompress; compress it without a long window"},
      {gzip(zstd("a")), ": compressed twice; decompress it once"},
      {"PK\3\4\x14", ": a zip archive, as .xlsx workbooks are; save the table as CSV"},
      {gzip("PAR1\x15\x04"), ": a Parquet file; save the table as CSV"},
      {"PAR1,PAR2", "PAR1,PAR2"},
      {"\xFF\xFE"
       "a\0"s,
       ": text in UTF-16; save it as UTF-8"}};
  for (const auto& [contents, text] : files) EXPECT_EQ(text_of_file(contents), text);
}

TEST(OpenFile, NamesWhatIsWrongWithCompressedData) {
  const std::string text = "a,b\n1,2\n1,3\n1,4\n5,6\n";
  for (const auto& [format, whole] : {std::pair("gzip"s, gzip(text)), {"zstd"s, zstd(text)}}) {
    const std::string damaged = ": damaged " + format + " data: ";
    for (std::size_t size = format == "gzip" ? 2 : 4; size < whole.size(); ++size)
      EXPECT_EQ(text_of_file(whole.substr(0, size)), damaged + "it ends too early") << size;
    for (std::size_t i = 8 * 4; i < 8 * whole.size(); ++i) {
      std::string bytes = whole;
      bytes[i / 8] = static_cast<char>(bytes[i / 8] ^ (1 << i % 8));
      const std::string result = text_of_file(bytes);
      // The time of compression, for example, is not checked.
      EXPECT_TRUE(result == text || result.find(format + " data") != std::string::npos) << result;
    }
  }
}

TEST(OpenFile, DeliversWhatStandsBeforeDamage) {
  const std::string text = table_text();
  for (std::string bytes : {gzip(text), zstd(text)}) {
    bytes.resize(bytes.size() / 2);
    const temporary_file file(bytes);
    const auto source = tree::open_file(file.path(), {});
    std::string all, part(1000, '\0');
    const std::string error = message_of<tree::table_error>([&] {
      for (;; all += part) ASSERT_EQ(source->read(part.data(), part.size()), part.size());
    });
    EXPECT_NE(error, "");
    EXPECT_GT(all.size(), text.size() / 4);
    EXPECT_EQ(all, text.substr(0, all.size()));
  }
}

TEST(OpenFile, BoundsWhatCompressedDataBecomes) {
  const std::string text(5000, 'x');
  for (const std::string& bytes : {gzip(text), zstd(text)}) {
    EXPECT_EQ(text_of_file(bytes, {5000, ""}), text);
    EXPECT_EQ(text_of_file(bytes, {4999, "the limit"}),
              ": the first " + std::to_string(bytes.size()) +
                  " bytes of the file become more than 4999; if they are meant to, choose a higher "
                  "limit with the limit");
  }
  text_source source(std::string(20000000, 'x'));
  const tree::expansion_limit limit;
  EXPECT_NO_THROW(limit.check(1ULL << 30U, source));
  EXPECT_THROW(limit.check((1ULL << 30U) + 1, source), tree::table_error);
  all_of(source);
  EXPECT_NO_THROW(limit.check(2000000000, source));
  EXPECT_THROW(limit.check(2000000001, source), tree::table_error);
}

// Throws after some bytes.
class failing_source : public text_source {
 public:
  using text_source::text_source;
  std::size_t read(char* buffer, std::size_t size) override {
    const std::size_t count = text_source::read(buffer, size);
    if (count < size) throw tree::table_error("failed");
    return count;
  }
};

TEST(ReadAhead, DeliversTheSameOnAThreadOfItsOwn) {
  const std::string text = table_text();
  for (const std::size_t step : {13U, 1000U, 1U << 18U, 1U << 21U}) {
    for (const std::size_t size : {0UL, 5UL, 1UL << 18U, 1UL << 19U, text.size()}) {
      tree::read_ahead whole(source_of(text.substr(0, size)));
      EXPECT_EQ(all_of(whole, step), text.substr(0, size));
      EXPECT_EQ(whole.bytes_of_file(), size);
    }
    tree::read_ahead failing(std::make_unique<failing_source>(text));
    std::string part(step, '\0');
    failing.read(part.data(), step % 5000);
    EXPECT_THROW(all_of(failing, step), tree::table_error);
    EXPECT_THROW(all_of(failing, step), tree::table_error);
    tree::read_ahead unused(source_of(text));  // ends early
  }
}

}  // namespace
}  // namespace arbor::tests
