// Prints the size of PNG pictures and a digest of their pixels, as any viewer would read them.

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_PNG
#include <stb_image.h>

#include <cstdint>
#include <cstdio>

int main(int argc, char* argv[])
{
    for (int i = 1; i < argc; ++i)
    {
        int width = 0, height = 0, channels = 0;
        stbi_uc* const pixels = stbi_load(argv[i], &width, &height, &channels, 3);
        if (pixels == nullptr)
        {
            std::fprintf(stderr, "%s: %s\n", argv[i], stbi_failure_reason());
            return 1;
        }
        std::uint32_t digest = 0x811C9DC5U; // FNV-1a
        for (const stbi_uc* p = pixels; p != pixels + 3 * width * height; ++p)
            digest = (digest ^ *p) * 0x01000193U;
        stbi_image_free(pixels);
        std::printf("%dx%d %08x\n", width, height, static_cast<unsigned int>(digest));
    }
    return 0;
}
