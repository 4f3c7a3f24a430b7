// Taking the white matte off merged colours and putting it on again.
using Kelmor.PSD.FileFormats.Psd;

namespace Kelmor.PSD.Tests.Psd;

public class MergedAlphaTests
{
    [Theory]
    [InlineData(0x80E29898, 0x80C53131)] // rounded it would be C5, 32, 32
    public void Matte_is_taken_off_and_cut_to_whole_numbers(uint stored, uint shown)
    {
        int[] pixels = [unchecked((int)stored)];
        MergedAlpha.TakeMatteOff(pixels);
        Assert.Equal(shown, unchecked((uint)pixels[0]));
    }

    [Fact]
    public void Stored_colours_come_back_when_the_matte_is_put_on_again()
    {
        for (var alpha = 0; alpha < 256; alpha++)
        {
            for (var stored = 255 - alpha; stored < 256; stored++)
            {
                int[] pixels = [alpha << 24 | stored * 0x010101];
                var before = pixels[0];
                MergedAlpha.TakeMatteOff(pixels);
                MergedAlpha.PutMatteOn(pixels);
                Assert.Equal(before, pixels[0]);
            }
        }
    }

    [Fact]
    public void Colours_darker_than_any_matte_allows_become_black()
    {
        int[] pixels = [0x10000000];
        MergedAlpha.TakeMatteOff(pixels);
        Assert.Equal(0x10000000, pixels[0]);
    }
}
