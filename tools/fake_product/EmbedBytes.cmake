# cmake -DINPUT=file -DOUTPUT=source.cpp -P EmbedBytes.cmake: turns a file into the bytes of
# EmbeddedImage() (VersionedImage.h).
file(READ ${INPUT} hex HEX)
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n" bytes "${bytes}")
file(WRITE ${OUTPUT} "#include \"tools/fake_product/VersionedImage.h\"

namespace velm_tools {

static constexpr unsigned char kImage[] = {
${bytes}
};

std::span<const unsigned char> EmbeddedImage() {
  return kImage;
}

}  // namespace velm_tools
")
