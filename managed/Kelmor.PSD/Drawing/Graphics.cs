// Draws onto an image. The work is done by a drawing library that is not connected yet.
namespace Kelmor.PSD;

/// <summary>Draws shapes, text and images onto an image.</summary>
public sealed class Graphics
{
    private readonly Image image;

    /// <summary>Draws onto an image.</summary>
    public Graphics(Image sourceImage)
    {
        ArgumentNullException.ThrowIfNull(sourceImage);
        image = sourceImage;
    }

    /// <summary>Multiplies the matrix.</summary>
    public void MultiplyTransform(Matrix matrix) => throw NotYet.Member();

    /// <summary>Multiplies the matrix.</summary>
    public void MultiplyTransform(Matrix matrix, MatrixOrder order) => throw NotYet.Member();

    /// <summary>Moves what is drawn from now on.</summary>
    public void TranslateTransform(float dx, float dy) => throw NotYet.Member();

    /// <summary>Moves what is drawn from now on.</summary>
    public void TranslateTransform(float dx, float dy, MatrixOrder order) => throw NotYet.Member();

    /// <summary>Scales what is drawn from now on.</summary>
    public void ScaleTransform(float sx, float sy) => throw NotYet.Member();

    /// <summary>Scales what is drawn from now on.</summary>
    public void ScaleTransform(float sx, float sy, MatrixOrder order) => throw NotYet.Member();

    /// <summary>Rotates what is drawn from now on, clockwise in degrees.</summary>
    public void RotateTransform(float angle) => throw NotYet.Member();

    /// <summary>Rotates what is drawn from now on, clockwise in degrees.</summary>
    public void RotateTransform(float angle, MatrixOrder order) => throw NotYet.Member();

    /// <summary>Draws a line.</summary>
    public void DrawLine(Pen pen, Point point1, Point point2) => throw NotYet.Member();

    /// <summary>Draws a line.</summary>
    public void DrawLine(Pen pen, PointF point1, PointF point2) => throw NotYet.Member();

    /// <summary>Draws a line.</summary>
    public void DrawLine(Pen pen, int x1, int y1, int x2, int y2) => throw NotYet.Member();

    /// <summary>Draws a line.</summary>
    public void DrawLine(Pen pen, float x1, float y1, float x2, float y2) => throw NotYet.Member();

    /// <summary>Draws lines from point to point.</summary>
    public void DrawLines(Pen pen, Point[] points) => throw NotYet.Member();

    /// <summary>Draws lines from point to point.</summary>
    public void DrawLines(Pen pen, PointF[] points) => throw NotYet.Member();

    /// <summary>Fills a rectangle.</summary>
    public void FillRectangle(Brush brush, Rectangle rect) => throw NotYet.Member();

    /// <summary>Fills a rectangle.</summary>
    public void FillRectangle(Brush brush, RectangleF rect) => throw NotYet.Member();

    /// <summary>Fills a rectangle.</summary>
    public void FillRectangle(Brush brush, float x, float y, float width, float height) =>
        throw NotYet.Member();

    /// <summary>Fills a rectangle.</summary>
    public void FillRectangle(Brush brush, int x, int y, int width, int height) =>
        throw NotYet.Member();

    /// <summary>Fills rectangles.</summary>
    public void FillRectangles(Brush brush, Rectangle[] rects) => throw NotYet.Member();

    /// <summary>Fills rectangles.</summary>
    public void FillRectangles(Brush brush, RectangleF[] rects) => throw NotYet.Member();

    /// <summary>Draws the outline of a rectangle.</summary>
    public void DrawRectangle(Pen pen, RectangleF rect) => throw NotYet.Member();

    /// <summary>Draws the outline of a rectangle.</summary>
    public void DrawRectangle(Pen pen, Rectangle rect) => throw NotYet.Member();

    /// <summary>Draws the outline of a rectangle.</summary>
    public void DrawRectangle(Pen pen, float x, float y, float width, float height) =>
        throw NotYet.Member();

    /// <summary>Draws the outline of a rectangle.</summary>
    public void DrawRectangle(Pen pen, int x, int y, int width, int height) =>
        throw NotYet.Member();

    /// <summary>Draws the outlines of rectangles.</summary>
    public void DrawRectangles(Pen pen, RectangleF[] rects) => throw NotYet.Member();

    /// <summary>Draws the outlines of rectangles.</summary>
    public void DrawRectangles(Pen pen, Rectangle[] rects) => throw NotYet.Member();

    /// <summary>Draws the outline of an ellipse.</summary>
    public void DrawEllipse(Pen pen, RectangleF rect) => throw NotYet.Member();

    /// <summary>Draws the outline of an ellipse.</summary>
    public void DrawEllipse(Pen pen, float x, float y, float width, float height) =>
        throw NotYet.Member();

    /// <summary>Draws the outline of an ellipse.</summary>
    public void DrawEllipse(Pen pen, Rectangle rect) => throw NotYet.Member();

    /// <summary>Draws the outline of an ellipse.</summary>
    public void DrawEllipse(Pen pen, int x, int y, int width, int height) => throw NotYet.Member();

    /// <summary>Draws the outline of a polygon.</summary>
    public void DrawPolygon(Pen pen, PointF[] points) => throw NotYet.Member();

    /// <summary>Draws the outline of a polygon.</summary>
    public void DrawPolygon(Pen pen, Point[] points) => throw NotYet.Member();

    /// <summary>Draws an image at its own resolution.</summary>
    public void DrawImage(Image sourceImage, PointF point) => throw NotYet.Member();

    /// <summary>Draws an image at its own resolution.</summary>
    public void DrawImage(Image sourceImage, float x, float y) => throw NotYet.Member();

    /// <summary>Draws an image at its own resolution.</summary>
    public void DrawImage(Image sourceImage, RectangleF rect) => throw NotYet.Member();

    /// <summary>Draws an image at its own resolution.</summary>
    public void DrawImage(Image sourceImage, Rectangle rect) => throw NotYet.Member();

    /// <summary>Draws an image at its own resolution.</summary>
    public void DrawImage(Image image, Point point) => throw NotYet.Member();

    /// <summary>Draws an image at its own resolution.</summary>
    public void DrawImage(Image image, int x, int y) => throw NotYet.Member();

    /// <summary>Draws an image pixel by pixel.</summary>
    public void DrawImageUnscaled(Image image, Point point) => throw NotYet.Member();

    /// <summary>Draws an image pixel by pixel.</summary>
    public void DrawImageUnscaled(Image image, int x, int y) => throw NotYet.Member();

    /// <summary>Draws an image pixel by pixel.</summary>
    public void DrawImageUnscaled(Image image, Rectangle rect) => throw NotYet.Member();

    /// <summary>Draws an image pixel by pixel.</summary>
    public void DrawImageUnscaled(Image image, int x, int y, int width, int height) =>
        throw NotYet.Member();

    /// <summary>Draws a part of the outline of an ellipse, angles clockwise in degrees.</summary>
    public void DrawArc(
        Pen pen,
        float x,
        float y,
        float width,
        float height,
        float startAngle,
        float sweepAngle
    ) => throw NotYet.Member();

    /// <summary>Draws a part of the outline of an ellipse, angles clockwise in degrees.</summary>
    public void DrawArc(Pen pen, RectangleF rect, float startAngle, float sweepAngle) =>
        throw NotYet.Member();

    /// <summary>Draws a part of the outline of an ellipse, angles clockwise in degrees.</summary>
    public void DrawArc(Pen pen, Rectangle rect, float startAngle, float sweepAngle) =>
        throw NotYet.Member();

    /// <summary>Draws the outline of a piece of an ellipse, angles clockwise in degrees.</summary>
    public void DrawPie(Pen pen, RectangleF rect, float startAngle, float sweepAngle) =>
        throw NotYet.Member();

    /// <summary>Draws the outline of a piece of an ellipse, angles clockwise in degrees.</summary>
    public void DrawPie(
        Pen pen,
        float x,
        float y,
        float width,
        float height,
        float startAngle,
        float sweepAngle
    ) => throw NotYet.Member();

    /// <summary>Draws the outline of a piece of an ellipse, angles clockwise in degrees.</summary>
    public void DrawPie(Pen pen, Rectangle rect, float startAngle, float sweepAngle) =>
        throw NotYet.Member();

    /// <summary>Draws a cardinal spline.</summary>
    public void DrawCurve(Pen pen, PointF[] points) => throw NotYet.Member();

    /// <summary>Draws a cardinal spline.</summary>
    public void DrawCurve(Pen pen, PointF[] points, float tension) => throw NotYet.Member();

    /// <summary>Draws a cardinal spline.</summary>
    public void DrawCurve(Pen pen, Point[] points) => throw NotYet.Member();

    /// <summary>Draws a cardinal spline.</summary>
    public void DrawCurve(Pen pen, Point[] points, float tension) => throw NotYet.Member();

    /// <summary>Draws a closed cardinal spline.</summary>
    public void DrawClosedCurve(Pen pen, PointF[] points) => throw NotYet.Member();

    /// <summary>Draws a closed cardinal spline.</summary>
    public void DrawClosedCurve(Pen pen, PointF[] points, float tension) => throw NotYet.Member();

    /// <summary>Draws a closed cardinal spline.</summary>
    public void DrawClosedCurve(Pen pen, Point[] points) => throw NotYet.Member();

    /// <summary>Draws a closed cardinal spline.</summary>
    public void DrawClosedCurve(Pen pen, Point[] points, float tension) => throw NotYet.Member();

    /// <summary>Draws a cubic curve.</summary>
    public void DrawBezier(
        Pen pen,
        float x1,
        float y1,
        float x2,
        float y2,
        float x3,
        float y3,
        float x4,
        float y4
    ) => throw NotYet.Member();

    /// <summary>Draws a cubic curve.</summary>
    public void DrawBezier(Pen pen, PointF pt1, PointF pt2, PointF pt3, PointF pt4) =>
        throw NotYet.Member();

    /// <summary>Draws a cubic curve.</summary>
    public void DrawBezier(Pen pen, Point pt1, Point pt2, Point pt3, Point pt4) =>
        throw NotYet.Member();

    /// <summary>Draws cubic curves one after the other.</summary>
    public void DrawBeziers(Pen pen, Point[] points) => throw NotYet.Member();

    /// <summary>Draws cubic curves one after the other.</summary>
    public void DrawBeziers(Pen pen, PointF[] points) => throw NotYet.Member();

    /// <summary>Draws text.</summary>
    public void DrawString(string s, Font font, Brush brush, float x, float y) =>
        throw NotYet.Member();

    /// <summary>Draws text.</summary>
    public void DrawString(string s, Font font, Brush brush, PointF point) => throw NotYet.Member();

    /// <summary>Draws text.</summary>
    public void DrawString(
        string s,
        Font font,
        Brush brush,
        float x,
        float y,
        StringFormat? format
    ) => throw NotYet.Member();

    /// <summary>Draws text.</summary>
    public void DrawString(string s, Font font, Brush brush, PointF point, StringFormat? format) =>
        throw NotYet.Member();

    /// <summary>Draws text.</summary>
    public void DrawString(string s, Font font, Brush brush, RectangleF layoutRectangle) =>
        throw NotYet.Member();

    /// <summary>Draws text.</summary>
    public void DrawString(
        string s,
        Font font,
        Brush brush,
        RectangleF layoutRectangle,
        StringFormat? format
    ) => throw NotYet.Member();

    /// <summary>Fills an ellipse.</summary>
    public void FillEllipse(Brush brush, RectangleF rect) => throw NotYet.Member();

    /// <summary>Fills an ellipse.</summary>
    public void FillEllipse(Brush brush, float x, float y, float width, float height) =>
        throw NotYet.Member();

    /// <summary>Fills an ellipse.</summary>
    public void FillEllipse(Brush brush, Rectangle rect) => throw NotYet.Member();

    /// <summary>Fills an ellipse.</summary>
    public void FillEllipse(Brush brush, int x, int y, int width, int height) =>
        throw NotYet.Member();

    /// <summary>Fills a piece of an ellipse, angles clockwise in degrees.</summary>
    public void FillPie(Brush brush, Rectangle rect, float startAngle, float sweepAngle) =>
        throw NotYet.Member();

    /// <summary>Fills a piece of an ellipse, angles clockwise in degrees.</summary>
    public void FillPie(Brush brush, RectangleF rect, float startAngle, float sweepAngle) =>
        throw NotYet.Member();

    /// <summary>Fills a polygon.</summary>
    public void FillPolygon(Brush brush, PointF[] points) => throw NotYet.Member();

    /// <summary>Fills a polygon.</summary>
    public void FillPolygon(Brush brush, PointF[] points, FillMode fillMode) =>
        throw NotYet.Member();

    /// <summary>Fills a polygon.</summary>
    public void FillPolygon(Brush brush, Point[] points) => throw NotYet.Member();

    /// <summary>Fills a polygon.</summary>
    public void FillPolygon(Brush brush, Point[] points, FillMode fillMode) =>
        throw NotYet.Member();

    /// <summary>Fills the inside of a closed cardinal spline.</summary>
    public void FillClosedCurve(Brush brush, PointF[] points) => throw NotYet.Member();

    /// <summary>Fills the inside of a closed cardinal spline.</summary>
    public void FillClosedCurve(Brush brush, PointF[] points, FillMode fillmode) =>
        throw NotYet.Member();

    /// <summary>Fills the inside of a closed cardinal spline.</summary>
    public void FillClosedCurve(Brush brush, Point[] points) => throw NotYet.Member();

    /// <summary>Fills the inside of a closed cardinal spline.</summary>
    public void FillClosedCurve(Brush brush, Point[] points, FillMode fillmode) =>
        throw NotYet.Member();

    /// <summary>Puts the matrix back to the identity.</summary>
    public void ResetTransform() => throw NotYet.Member();

    /// <summary>Collects drawings until the update ends.</summary>
    public void BeginUpdate() => throw NotYet.Member();

    /// <summary>Draws what was collected.</summary>
    public void EndUpdate() => throw NotYet.Member();

    /// <summary>Gives every pixel one colour.</summary>
    /// <param name="color">The colour; its alpha replaces that of the pixels.</param>
    /// <exception cref="NotSupportedException">The image does not consist of pixels.</exception>
    public void Clear(Color color)
    {
        if (image is not RasterImage raster)
        {
            throw new NotSupportedException("Only images that consist of pixels can be cleared.");
        }
        foreach (var band in raster.Bands(raster.Bounds))
        {
            var pixels = new int[PixelAreas.Count(band)];
            Array.Fill(pixels, color.ToArgb());
            raster.SaveArgb32Pixels(band, pixels);
        }
    }

    /// <summary>Draws a part of an image pixel by pixel.</summary>
    public void DrawImageUnscaledAndClipped(Image image, Rectangle rect) => throw NotYet.Member();

    /// <summary>Draws the outline of a path.</summary>
    public void DrawPath(Pen pen, GraphicsPath path) => throw NotYet.Member();

    /// <summary>Fills the inside of a path.</summary>
    public void FillPath(Brush brush, GraphicsPath path) => throw NotYet.Member();

    /// <summary>Fills a region.</summary>
    public void FillRegion(Brush brush, Region region) => throw NotYet.Member();

    /// <summary>Pixels per inch across.</summary>
    public float DpiX => (float)((image as RasterImage)?.HorizontalResolution ?? 96);

    /// <summary>Pixels per inch downwards.</summary>
    public float DpiY => (float)((image as RasterImage)?.VerticalResolution ?? 96);

    /// <summary>Unit of lengths.</summary>
    public GraphicsUnit PageUnit { get; set; } = GraphicsUnit.Display;

    /// <summary>Scale of lengths.</summary>
    public float PageScale { get; set; } = 1;

    /// <summary>Region outside of which nothing is drawn; null for none.</summary>
    public Region? Clip { get; set; }

    /// <summary>Matrix from drawn lengths to pixels.</summary>
    public Matrix Transform { get; set; } = new();

    /// <summary>True between the begin and the end of an update.</summary>
    public bool IsInBeginUpdateCall => false;

    /// <summary>The image that is drawn onto.</summary>
    public Image Image => image;

    /// <summary>Care taken when drawings are laid over pixels.</summary>
    public CompositingQuality CompositingQuality { get; set; }

    /// <summary>How scaled images are computed.</summary>
    public InterpolationMode InterpolationMode { get; set; }

    /// <summary>How edges are smoothed.</summary>
    public SmoothingMode SmoothingMode { get; set; }

    /// <summary>How text is rendered.</summary>
    public TextRenderingHint TextRenderingHint { get; set; }

    /// <summary>Options for drawing images that are loaded on the way.</summary>
    public ImageOptionsBase? PaintableImageOptions { get; set; }
}
