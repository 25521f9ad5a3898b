# Joins the parts of the status page into one file and writes it as C++.
#   cmake -DHTML=FILE -DSTYLE=FILE -DSCRIPTS=FILE,FILE... -DOUT=FILE -P build.cmake
cmake_minimum_required(VERSION 3.25)

# SHA-256 in base 64, as a page's policy names what it allows: three hexadecimal digits are two
# digits of base 64.
function(hash_of TEXT OUT_HASH)
    set(digits "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
    string(SHA256 hex "${TEXT}")
    set(hash "")
    foreach(at RANGE 0 62 3)
        string(SUBSTRING "${hex}" ${at} 3 three)
        math(EXPR high "0x${three} >> 6")
        math(EXPR low "0x${three} & 63")
        string(SUBSTRING "${digits}" ${high} 1 first)
        string(SUBSTRING "${digits}" ${low} 1 second)
        string(APPEND hash "${first}${second}")
    endforeach()
    # 64 hexadecimal digits: the last one stands alone.
    string(SUBSTRING "${hex}" 63 1 last)
    math(EXPR high "0x${last} << 2")
    string(SUBSTRING "${digits}" ${high} 1 first)
    set(${OUT_HASH} "${hash}${first}=" PARENT_SCOPE)
endfunction()

file(READ "${HTML}" html)
file(READ "${STYLE}" style)
set(script "\"use strict\";\n")
string(REPLACE "," ";" files "${SCRIPTS}")
foreach(file IN LISTS files)
    file(READ "${file}" part)
    string(APPEND script "${part}")
endforeach()

hash_of("${style}" style_hash)
hash_of("${script}" script_hash)
string(REPLACE "@STYLE@" "${style}" html "${html}")
string(REPLACE "@SCRIPT@" "${script}" html "${html}")

# As bytes: a string literal has a longest length.
file(WRITE "${OUT}.html" "${html}")
file(READ "${OUT}.html" bytes HEX)
string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
file(WRITE "${OUT}" "#include \"agent/http/PageParts.h\"

namespace QosAgent::Http {
namespace {
constexpr char kBytes[] = {
${bytes}
};
}  // namespace
const std::string_view kPageText(kBytes, sizeof kBytes);
const char* const kStyleHash = \"${style_hash}\";
const char* const kScriptHash = \"${script_hash}\";
}  // namespace QosAgent::Http
")
