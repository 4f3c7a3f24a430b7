// A text layer.
using Kelmor.PSD.FileFormats.Psd.Layers.Text;
using Kelmor.PSD.FileFormats.Psd.Layers.Warp;

namespace Kelmor.PSD.FileFormats.Psd.Layers
{
    /// <summary>A layer that was rendered from text.</summary>
    public class TextLayer : Layer
    {
        internal TextLayer(LayerRecord record, PsdHeader header)
            : base(record, header) { }

        /// <summary>Changes the text; its first style is kept.</summary>
        public void UpdateText(string text) => throw NotYet.Member();

        /// <summary>Changes the text and its size in points.</summary>
        public void UpdateText(string text, float fontSize) => throw NotYet.Member();

        /// <summary>Changes the text and its colour.</summary>
        public void UpdateText(string text, Color color) => throw NotYet.Member();

        /// <summary>Changes the text, its size in points and its colour.</summary>
        public void UpdateText(string text, float fontSize, Color color) => throw NotYet.Member();

        /// <inheritdoc/>
        public override void Resize(int newWidth, int newHeight, ResizeType resizeType) =>
            throw NotYet.Member();

        /// <summary>The fonts that the text uses.</summary>
        public TextFontInfo[] GetFonts() => throw NotYet.Member();

        /// <summary>The text as the layer shows it, lines ended by carriage returns.</summary>
        public string Text => TextDescriptor.TextOf(Record);

        /// <summary>Rectangle of the text in the layer's own pixels.</summary>
        public Rectangle TextBoundBox => throw NotYet.Member();

        /// <summary>The text, lines ended by carriage returns.</summary>
        public string InnerText => TextDescriptor.TextOf(Record);

        /// <summary>Font of the first characters.</summary>
        public Font Font => throw NotYet.Member();

        /// <summary>Text with its paragraphs and styles.</summary>
        public IText TextData => throw NotYet.Member();

        /// <summary>Colour of the first characters.</summary>
        public Color TextColor => throw NotYet.Member();

        /// <summary>
        /// Matrix from the text's own space to the document: xx, xy, yx, yy, tx, ty.
        /// </summary>
        public double[] TransformMatrix => TextDescriptor.MatrixOf(Record);

        /// <summary>How the text is bent.</summary>
        public WarpSettings WarpSettings => throw NotYet.Member();
    }
}

namespace Kelmor.PSD.FileFormats.Psd.Layers.Text
{
    /// <summary>Text with its paragraphs and styles.</summary>
    public interface IText
    {
        /// <summary>The characters.</summary>
        string Text { get; }
    }

    /// <summary>A font that a text uses.</summary>
    public sealed class TextFontInfo
    {
        internal TextFontInfo(string postScriptName) => PostScriptName = postScriptName;

        /// <summary>PostScript name of the font.</summary>
        public string PostScriptName { get; }
    }
}

namespace Kelmor.PSD.FileFormats.Psd.Layers.Warp
{
    /// <summary>How a layer is bent.</summary>
    public class WarpSettings { }
}

namespace Kelmor.PSD.FileFormats.Psd.Layers.LayerEffects
{
    /// <summary>An effect of a layer.</summary>
    public interface ILayerEffect
    {
        /// <summary>True when the effect is shown.</summary>
        bool IsVisible { get; set; }
    }

    /// <summary>Effects and other settings of blending of one layer.</summary>
    public class BlendingOptions
    {
        private readonly Layer layer;

        internal BlendingOptions(Layer layer) => this.layer = layer;

        /// <summary>The effects of the layer.</summary>
        public ILayerEffect[] Effects =>
            layer.Record.Has("lfx2", "lfxs", "lmfx", "lrFX") ? throw NotYet.Member() : [];
    }
}
