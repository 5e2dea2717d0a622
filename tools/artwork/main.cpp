// Draws every picture under res/: the splash, the window icon, the panel
// buttons in their normal, hover, disabled and checked looks, the animation
// frames and the dialog icons. Run with the res folder as its argument.
#include <cmath>
#include <functional>

#include <QDir>
#include <QFileInfo>
#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <QTextStream>

namespace {

QString outputRoot;

// One palette for the whole program: dark greys, a cyan accent, a record red.
const QColor accent(86, 183, 203);
const QColor record(222, 44, 44);
const QColor light(214, 214, 214);
const QColor dim(110, 110, 110);

enum class Look { Normal, Hover, Disabled };

QImage canvas(int w, int h)
{
    QImage image(w, h, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

void save(const QImage &image, const QString &name)
{
    const QString path = outputRoot + QLatin1Char('/') + name;
    QDir().mkpath(QFileInfo(path).absolutePath());
    if (!image.save(path))
        qFatal("cannot write %s", qPrintable(path));
}

QColor ink(Look look, const QColor &normal = light)
{
    switch (look) {
    case Look::Hover:
        return normal == light ? QColor(255, 255, 255) : normal.lighter(125);
    case Look::Disabled:
        return QColor(96, 96, 96);
    default:
        return normal;
    }
}

// A rounded plate with a soft vertical gradient; hover adds an accent rim.
void plate(QPainter &p, const QRectF &r, Look look, qreal radius = 6, const QColor &rim = accent)
{
    QLinearGradient fill(r.topLeft(), r.bottomLeft());
    switch (look) {
    case Look::Normal:
        fill.setColorAt(0, QColor(78, 78, 80));
        fill.setColorAt(1, QColor(46, 46, 48));
        break;
    case Look::Hover:
        fill.setColorAt(0, QColor(96, 98, 102));
        fill.setColorAt(1, QColor(58, 60, 64));
        break;
    case Look::Disabled:
        fill.setColorAt(0, QColor(50, 50, 50));
        fill.setColorAt(1, QColor(38, 38, 38));
        break;
    }
    p.setPen(QPen(look == Look::Hover ? rim : QColor(30, 30, 30), 1.2));
    p.setBrush(fill);
    p.drawRoundedRect(r.adjusted(0.6, 0.6, -0.6, -0.6), radius, radius);
    if (look != Look::Disabled) {
        p.setPen(QPen(QColor(255, 255, 255, 28), 1));
        p.drawLine(r.topLeft() + QPointF(radius, 1.6), r.topRight() + QPointF(-radius, 1.6));
    }
}

using Glyph = std::function<void(QPainter &, const QRectF &, const QColor &)>;

// Writes stem_normal/_hover/_disabled.png for a plate of this size with a glyph.
void button(const QString &stem, QSize size, const Glyph &glyph, const QColor &glyphColor = light,
            const QColor &rim = accent, qreal radius = 6)
{
    const std::pair<Look, const char *> looks[] = { { Look::Normal, "_normal" }, { Look::Hover, "_hover" },
                                                    { Look::Disabled, "_disabled" } };
    for (const auto &[look, suffix] : looks) {
        QImage image = canvas(size.width(), size.height());
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        plate(p, QRectF(QPointF(0, 0), size), look, radius, rim);
        if (glyph)
            glyph(p, QRectF(QPointF(0, 0), size), ink(look, glyphColor));
        p.end();
        save(image, stem + QLatin1String(suffix) + QStringLiteral(".png"));
    }
}

// Glyphs, each drawn into the given rectangle.
void chevron(QPainter &p, const QRectF &r, const QColor &c)
{
    p.setPen(QPen(c, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF centre(r.right() - 12, r.center().y());
    p.drawPolyline(QPolygonF({ centre + QPointF(-4, -2), centre + QPointF(0, 2), centre + QPointF(4, -2) }));
}

void cameraGlyph(QPainter &p, const QRectF &r, const QColor &c)
{
    const QPointF o = r.center();
    p.setPen(QPen(c, 2));
    p.setBrush(Qt::NoBrush);
    p.drawRoundedRect(QRectF(o.x() - 15, o.y() - 9, 30, 21), 3, 3);
    p.drawRect(QRectF(o.x() - 6, o.y() - 13, 12, 4));
    p.drawEllipse(o + QPointF(0, 1.5), 6.5, 6.5);
    p.setBrush(c);
    p.drawEllipse(o + QPointF(0, 1.5), 2.5, 2.5);
}

void recordGlyph(QPainter &p, const QRectF &r, const QColor &c)
{
    const QPointF o = r.center();
    p.setPen(QPen(c == QColor(96, 96, 96) ? c : QColor(235, 235, 235), 2));
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(o, 14, 14);
    p.setPen(Qt::NoPen);
    p.setBrush(c);
    p.drawEllipse(o, 9, 9);
}

void stopGlyph(QPainter &p, const QRectF &r, const QColor &c)
{
    const QPointF o = r.center();
    p.setPen(QPen(QColor(255, 255, 255), 2));
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(o, 14, 14);
    p.setPen(Qt::NoPen);
    p.setBrush(c);
    p.drawRoundedRect(QRectF(o.x() - 6, o.y() - 6, 12, 12), 2, 2);
}

void liveGlyph(QPainter &p, const QRectF &r, const QColor &c)
{
    const QPointF o(r.left() + 17, r.center().y());
    p.setPen(Qt::NoPen);
    p.setBrush(c == QColor(96, 96, 96) ? c : record);
    p.drawEllipse(o, 4, 4);
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(c, 1.5, Qt::SolidLine, Qt::RoundCap));
    p.drawArc(QRectF(o.x() - 8, o.y() - 8, 16, 16), -50 * 16, 100 * 16);
    p.drawArc(QRectF(o.x() - 8, o.y() - 8, 16, 16), 130 * 16, 100 * 16);
}

void speaker(QPainter &p, const QPointF &o, const QColor &c)
{
    QPainterPath body;
    body.moveTo(o + QPointF(-7, -3));
    body.lineTo(o + QPointF(-3, -3));
    body.lineTo(o + QPointF(2, -8));
    body.lineTo(o + QPointF(2, 8));
    body.lineTo(o + QPointF(-3, 3));
    body.lineTo(o + QPointF(-7, 3));
    body.closeSubpath();
    p.setPen(Qt::NoPen);
    p.setBrush(c);
    p.drawPath(body);
}

void volumeGlyph(QPainter &p, const QRectF &r, const QColor &c)
{
    const QPointF o(r.left() + 12, r.center().y());
    speaker(p, o, c);
}

void mutedGlyph(QPainter &p, const QRectF &r, const QColor &c)
{
    const QPointF o(r.left() + 12, r.center().y());
    speaker(p, o, c == QColor(96, 96, 96) ? c : QColor(170, 170, 170));
    p.setPen(QPen(c, 2, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(o + QPointF(-9, -9), o + QPointF(9, 9));
}

void pencilGlyph(QPainter &p, const QRectF &r, const QColor &c)
{
    p.save();
    p.translate(r.center());
    p.rotate(-45);
    p.setPen(Qt::NoPen);
    p.setBrush(c);
    p.drawRect(QRectF(-6, -2, 10, 4));
    p.drawPolygon(QPolygonF({ QPointF(4, -2), QPointF(8, 0), QPointF(4, 2) }));
    p.restore();
}

void saveGlyph(QPainter &p, const QRectF &r, const QColor &c)
{
    p.setPen(QPen(c, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF o = r.center();
    p.drawPolyline(QPolygonF({ o + QPointF(-5, 0), o + QPointF(-1.5, 4), o + QPointF(5.5, -4) }));
}

void refreshGlyph(QPainter &p, const QRectF &r, const QColor &c)
{
    const QPointF o = r.center();
    p.setPen(QPen(c, 1.8, Qt::SolidLine, Qt::RoundCap));
    p.setBrush(Qt::NoBrush);
    p.drawArc(QRectF(o.x() - 6, o.y() - 6, 12, 12), 60 * 16, 280 * 16);
    p.setPen(Qt::NoPen);
    p.setBrush(c);
    p.drawPolygon(QPolygonF({ o + QPointF(2, -9), o + QPointF(6.5, -5.5), o + QPointF(1, -3) }));
}

void removeGlyph(QPainter &p, const QRectF &r, const QColor &c)
{
    const QPointF o = r.center();
    p.setPen(QPen(c, 1.6));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRectF(o.x() - 4.5, o.y() - 3, 9, 10));
    p.drawLine(o + QPointF(-6.5, -4.5), o + QPointF(6.5, -4.5));
    p.drawLine(o + QPointF(-2, -6.5), o + QPointF(2, -6.5));
    p.drawLine(o + QPointF(-1.5, -1), o + QPointF(-1.5, 5));
    p.drawLine(o + QPointF(1.5, -1), o + QPointF(1.5, 5));
}

void folderGlyph(QPainter &p, const QRectF &r, const QColor &c)
{
    const QPointF o = r.center();
    QPainterPath path;
    path.moveTo(o + QPointF(-7, -5));
    path.lineTo(o + QPointF(-2, -5));
    path.lineTo(o + QPointF(0, -3));
    path.lineTo(o + QPointF(7, -3));
    path.lineTo(o + QPointF(7, 5));
    path.lineTo(o + QPointF(-7, 5));
    path.closeSubpath();
    p.setPen(Qt::NoPen);
    p.setBrush(c);
    p.drawPath(path);
}

void drawSplash()
{
    QImage image = canvas(640, 360);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient background(0, 0, 0, 360);
    background.setColorAt(0, QColor(36, 40, 46));
    background.setColorAt(1, QColor(14, 15, 18));
    p.fillRect(image.rect(), background);

    // A lens: rings around a cyan pupil.
    const QPointF lens(170, 180);
    for (int ring = 0; ring < 4; ++ring) {
        p.setPen(QPen(QColor(86, 183, 203, 200 - ring * 45), 3));
        p.setBrush(Qt::NoBrush);
        p.drawEllipse(lens, 86 - ring * 16, 86 - ring * 16);
    }
    QRadialGradient pupil(lens, 30);
    pupil.setColorAt(0, QColor(170, 235, 245));
    pupil.setColorAt(1, QColor(30, 110, 130));
    p.setPen(Qt::NoPen);
    p.setBrush(pupil);
    p.drawEllipse(lens, 28, 28);
    p.setBrush(QColor(255, 255, 255, 180));
    p.drawEllipse(lens + QPointF(-9, -9), 6, 6);

    QFont title(QStringLiteral("DejaVu Sans"), 54, QFont::Bold);
    title.setLetterSpacing(QFont::AbsoluteSpacing, 4);
    p.setFont(title);
    p.setPen(QColor(235, 238, 240));
    p.drawText(QRectF(290, 110, 330, 90), Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("Orvix"));
    QFont subtitle(QStringLiteral("DejaVu Sans"), 15);
    p.setFont(subtitle);
    p.setPen(accent);
    p.drawText(QRectF(294, 196, 330, 30), Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("Surgical Full HD Camera"));
    p.setPen(QColor(140, 140, 140));
    QFont small(QStringLiteral("DejaVu Sans"), 10);
    p.setFont(small);
    p.drawText(QRectF(294, 300, 330, 24), Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("Kelvane  ·  starting…"));
    p.end();
    save(image, QStringLiteral("brand.png"));
}

// The program's icon, drawn on a 256 grid at each of the desktop's usual
// sizes; orvix.png is the window's own, the rest go to the icon theme.
void drawIcon()
{
    for (const int size : { 16, 24, 32, 48, 64, 128, 256 }) {
        QImage image = canvas(size, size);
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        p.scale(size / 256.0, size / 256.0);
        QLinearGradient background(0, 0, 0, 256);
        background.setColorAt(0, QColor(58, 64, 72));
        background.setColorAt(1, QColor(22, 24, 28));
        p.setPen(Qt::NoPen);
        p.setBrush(background);
        p.drawRoundedRect(QRectF(8, 8, 240, 240), 52, 52);
        const QPointF centre(128, 128);
        p.setBrush(Qt::NoBrush);
        p.setPen(QPen(accent, 14));
        p.drawEllipse(centre, 76, 76);
        p.setPen(QPen(QColor(86, 183, 203, 120), 8));
        p.drawEllipse(centre, 52, 52);
        QRadialGradient pupil(centre, 34);
        pupil.setColorAt(0, QColor(180, 240, 250));
        pupil.setColorAt(1, QColor(26, 100, 120));
        p.setPen(Qt::NoPen);
        p.setBrush(pupil);
        p.drawEllipse(centre, 32, 32);
        p.setBrush(record);
        p.drawEllipse(QPointF(198, 58), 14, 14);
        p.end();
        save(image, size == 256 ? QStringLiteral("orvix.png") : QStringLiteral("icons/%1x%1/orvix.png").arg(size));
    }
}

void drawPanels()
{
    QImage strip = canvas(8, 70);
    {
        QPainter p(&strip);
        QLinearGradient g(0, 0, 0, 70);
        g.setColorAt(0, QColor(52, 52, 54));
        g.setColorAt(0.04, QColor(40, 40, 42));
        g.setColorAt(1, QColor(16, 16, 18));
        p.fillRect(strip.rect(), g);
        p.setPen(QColor(80, 80, 84));
        p.drawLine(0, 0, 8, 0);
    }
    save(strip, QStringLiteral("ControlPanel/background.png"));

    for (const char *name : { "InformationPanel/header_background.png", "FilePreviewPanel/header_background.png" }) {
        QImage header = canvas(8, 24);
        QPainter p(&header);
        QLinearGradient g(0, 0, 0, 24);
        g.setColorAt(0, QColor(84, 84, 88));
        g.setColorAt(1, QColor(50, 50, 54));
        p.fillRect(header.rect(), g);
        p.setPen(QColor(30, 30, 30));
        p.drawLine(0, 23, 8, 23);
        p.end();
        save(header, QString::fromLatin1(name));
    }

    QImage volume = canvas(120, 40);
    {
        QPainter p(&volume);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(QPen(QColor(24, 24, 24), 1));
        p.setBrush(QColor(34, 34, 36));
        p.drawRoundedRect(QRectF(0.5, 0.5, 119, 39), 8, 8);
    }
    save(volume, QStringLiteral("ControlPanel/frame_volume_control_normal.png"));
}

void drawButtons()
{
    button(QStringLiteral("ControlPanel/button_resolution"), QSize(111, 40), chevron);
    button(QStringLiteral("ControlPanel/button_rotation"), QSize(107, 40), chevron);
    button(QStringLiteral("ControlPanel/button_image_capture"), QSize(80, 50), cameraGlyph);
    button(QStringLiteral("ControlPanel/button_video_capture"), QSize(80, 50), recordGlyph, record);
    button(QStringLiteral("ControlPanel/button_video_capturing"), QSize(80, 50), stopGlyph, record, record);
    button(QStringLiteral("ControlPanel/button_live"), QSize(69, 40), liveGlyph);
    button(QStringLiteral("ControlPanel/button_volume"), QSize(40, 40), volumeGlyph, light, accent, 8);
    button(QStringLiteral("ControlPanel/button_muted"), QSize(40, 40), mutedGlyph, record, record, 8);
    button(QStringLiteral("InformationPanel/button_edit"), QSize(23, 23), pencilGlyph, light, accent, 4);
    button(QStringLiteral("InformationPanel/button_save"), QSize(23, 23), saveGlyph, accent, accent, 4);
    button(QStringLiteral("InformationPanel/button_refresh"), QSize(23, 23), refreshGlyph, light, accent, 4);
    button(QStringLiteral("FilePreviewPanel/button_remove"), QSize(23, 23), removeGlyph, light, record, 4);
    button(QStringLiteral("FilePreviewPanel/button_folder"), QSize(22, 22), folderGlyph, light, accent, 4);
}

void drawSmallIcons()
{
    QImage movies = canvas(16, 16);
    {
        QPainter p(&movies);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(Qt::NoPen);
        p.setBrush(light);
        p.drawRoundedRect(QRectF(1, 3, 14, 10), 1.5, 1.5);
        p.setBrush(QColor(40, 40, 40));
        for (int x = 2; x < 15; x += 3) {
            p.drawRect(QRectF(x, 4, 1.6, 1.6));
            p.drawRect(QRectF(x, 10.4, 1.6, 1.6));
        }
        p.setBrush(record);
        p.drawPolygon(QPolygonF({ QPointF(6.5, 6), QPointF(10.5, 8), QPointF(6.5, 10) }));
    }
    save(movies, QStringLiteral("FolderShortCuts/movies_folder.png"));

    QImage images = canvas(16, 16);
    {
        QPainter p(&images);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(QPen(light, 1.4));
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(QRectF(1.5, 2.5, 13, 11), 1.5, 1.5);
        p.setPen(Qt::NoPen);
        p.setBrush(accent);
        p.drawPolygon(QPolygonF({ QPointF(3, 12), QPointF(7, 7), QPointF(10, 10), QPointF(11.5, 8.5), QPointF(13.5, 12) }));
        p.setBrush(QColor(240, 200, 90));
        p.drawEllipse(QPointF(11, 5.5), 1.6, 1.6);
    }
    save(images, QStringLiteral("FolderShortCuts/images_folder.png"));

    QImage placeholder = canvas(160, 90);
    {
        QPainter p(&placeholder);
        p.setRenderHint(QPainter::Antialiasing);
        QLinearGradient g(0, 0, 0, 90);
        g.setColorAt(0, QColor(50, 52, 56));
        g.setColorAt(1, QColor(24, 25, 28));
        p.fillRect(placeholder.rect(), g);
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(14, 14, 14));
        p.drawRect(0, 0, 160, 12);
        p.drawRect(0, 78, 160, 12);
        p.setBrush(QColor(70, 70, 70));
        for (int x = 6; x < 160; x += 14) {
            p.drawRoundedRect(QRectF(x, 3, 7, 6), 1, 1);
            p.drawRoundedRect(QRectF(x, 81, 7, 6), 1, 1);
        }
        p.setBrush(QColor(255, 255, 255, 40));
        p.drawEllipse(QPointF(80, 45), 20, 20);
        p.setBrush(QColor(240, 240, 240));
        p.drawPolygon(QPolygonF({ QPointF(73, 34), QPointF(91, 45), QPointF(73, 56) }));
    }
    save(placeholder, QStringLiteral("mp4background.png"));

    for (const bool playing : { false, true }) {
        QImage icon = canvas(50, 50);
        QPainter p(&icon);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(QPen(QColor(200, 200, 200), 2));
        p.setBrush(QColor(40, 40, 42, 220));
        p.drawEllipse(QPointF(25, 25), 20, 20);
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(240, 240, 240));
        if (playing) {
            p.drawRoundedRect(QRectF(17.5, 15, 5, 20), 1, 1);
            p.drawRoundedRect(QRectF(27.5, 15, 5, 20), 1, 1);
        } else {
            p.drawPolygon(QPolygonF({ QPointF(20, 14), QPointF(35, 25), QPointF(20, 36) }));
        }
        p.end();
        save(icon, playing ? QStringLiteral("MediaPlayer/icon_pause.png") : QStringLiteral("MediaPlayer/icon_play.png"));
    }
}

void drawWaitingSignal()
{
    QImage image = canvas(180, 130);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const QPointF camera(90, 88);
    p.setPen(QPen(QColor(150, 150, 150), 4));
    p.setBrush(Qt::NoBrush);
    p.drawRoundedRect(QRectF(camera.x() - 38, camera.y() - 24, 60, 48), 8, 8);
    p.drawPolygon(QPolygonF({ camera + QPointF(26, -10), camera + QPointF(44, -20), camera + QPointF(44, 20),
                              camera + QPointF(26, 10) }));
    // Waves above, fading out: the signal is being looked for.
    for (int wave = 0; wave < 3; ++wave) {
        p.setPen(QPen(QColor(86, 183, 203, 230 - wave * 70), 4, Qt::SolidLine, Qt::RoundCap));
        const qreal radius = 16 + wave * 14;
        p.drawArc(QRectF(90 - radius, 46 - radius, radius * 2, radius * 2), 45 * 16, 90 * 16);
    }
    p.setPen(Qt::NoPen);
    p.setBrush(accent);
    p.drawEllipse(QPointF(90, 46), 5, 5);
    p.end();
    save(image, QStringLiteral("WaitingForCamera/signal.png"));
}

void drawRecordingAnimation()
{
    // 24 frames of a red dot that breathes inside a ring whose bright segment
    // runs once round per second: unmistakably "recording".
    for (int frame = 0; frame < 24; ++frame) {
        QImage image = canvas(80, 50);
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        const QPointF o(40, 25);
        for (int segment = 0; segment < 12; ++segment) {
            const int age = (frame / 2 - segment + 12) % 12;
            QColor c = record;
            c.setAlpha(qMax(30, 255 - age * 40));
            p.setPen(QPen(c, 3, Qt::SolidLine, Qt::RoundCap));
            p.drawArc(QRectF(o.x() - 19, o.y() - 19, 38, 38), (90 - segment * 30) * 16 - 10 * 16, -10 * 16);
        }
        const qreal pulse = 0.5 + 0.5 * std::cos(frame * 2 * M_PI / 24);
        QRadialGradient glow(o, 14);
        glow.setColorAt(0, QColor(255, 90, 90, int(120 + 100 * pulse)));
        glow.setColorAt(1, QColor(222, 44, 44, 0));
        p.setPen(Qt::NoPen);
        p.setBrush(glow);
        p.drawEllipse(o, 14, 14);
        p.setBrush(QColor(255, 255, 255, 235));
        p.drawRoundedRect(QRectF(o.x() - 5, o.y() - 5, 10, 10), 2, 2);
        p.end();
        save(image, QStringLiteral("Ani/ing/%1.png").arg(frame + 1, 2, 10, QLatin1Char('0')));
    }
}

void drawLevelFrames()
{
    // Six frames, each lighting one more of six bars from the bottom.
    for (int frame = 0; frame < 6; ++frame) {
        QImage image = canvas(13, 26);
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        for (int bar = 0; bar < 6; ++bar) {
            const qreal y = 22 - bar * 4;
            QColor c = bar < 3 ? QColor(80, 200, 110) : bar < 5 ? QColor(235, 200, 60) : record;
            if (bar > frame)
                c = QColor(70, 70, 70);
            p.setPen(Qt::NoPen);
            p.setBrush(c);
            p.drawRoundedRect(QRectF(1, y, 11, 2.6), 1, 1);
        }
        p.end();
        save(image, QStringLiteral("Ani/levels/%1.png").arg(frame + 1, 2, 10, QLatin1Char('0')));
    }
}

void drawVideoConfig()
{
    // 01 is the weaker end of a scale, 02 the stronger.
    using Painter = std::function<void(QPainter &, bool strong)>;
    const std::pair<const char *, Painter> icons[] = {
        { "brightness", [](QPainter &p, bool strong) {
              p.setPen(QPen(light, 1.4, Qt::SolidLine, Qt::RoundCap));
              p.setBrush(strong ? light : Qt::NoBrush);
              p.drawEllipse(QPointF(10, 10), 3.5, 3.5);
              const int rays = strong ? 8 : 4;
              for (int i = 0; i < rays; ++i) {
                  const qreal a = i * 2 * M_PI / rays;
                  p.drawLine(QPointF(10 + 5.5 * std::cos(a), 10 + 5.5 * std::sin(a)),
                             QPointF(10 + 8 * std::cos(a), 10 + 8 * std::sin(a)));
              }
          } },
        { "contrast", [](QPainter &p, bool strong) {
              p.setPen(QPen(light, 1.4));
              p.setBrush(Qt::NoBrush);
              p.drawEllipse(QPointF(10, 10), 7, 7);
              p.setBrush(strong ? light : QColor(140, 140, 140));
              p.drawPie(QRectF(3, 3, 14, 14), 90 * 16, 180 * 16);
          } },
        { "hue", [](QPainter &p, bool strong) {
              for (int i = 0; i < 6; ++i) {
                  QColor c = QColor::fromHsv(i * 60, strong ? 230 : 110, 230);
                  p.setPen(Qt::NoPen);
                  p.setBrush(c);
                  p.drawPie(QRectF(3, 3, 14, 14), i * 60 * 16, 60 * 16);
              }
          } },
        { "saturation", [](QPainter &p, bool strong) {
              QPainterPath drop;
              drop.moveTo(10, 2.5);
              drop.cubicTo(15, 9, 16, 12, 10, 17.5);
              drop.cubicTo(4, 12, 5, 9, 10, 2.5);
              p.setPen(QPen(light, 1.2));
              p.setBrush(strong ? QColor(90, 170, 230) : QColor(120, 130, 140));
              p.drawPath(drop);
          } },
        { "white", [](QPainter &p, bool strong) {
              p.setPen(QPen(light, 1.3));
              p.setBrush(Qt::NoBrush);
              p.drawRoundedRect(QRectF(8, 2, 4, 12), 2, 2);
              p.setPen(Qt::NoPen);
              p.setBrush(strong ? QColor(240, 160, 60) : QColor(110, 170, 240));
              p.drawEllipse(QPointF(10, 15), 3.5, 3.5);
          } },
        { "gamma", [](QPainter &p, bool strong) {
              p.setPen(QPen(light, 1.5, Qt::SolidLine, Qt::RoundCap));
              p.setBrush(Qt::NoBrush);
              QPainterPath curve;
              curve.moveTo(3, 17);
              if (strong)
                  curve.quadTo(4, 4, 17, 3);
              else
                  curve.quadTo(16, 16, 17, 3);
              p.drawPath(curve);
          } },
        { "backlight", [](QPainter &p, bool strong) {
              p.setPen(Qt::NoPen);
              p.setBrush(strong ? QColor(250, 220, 120) : QColor(150, 140, 110));
              p.drawEllipse(QPointF(13, 7), 5, 5);
              p.setBrush(light);
              p.drawEllipse(QPointF(8, 9), 2.5, 2.5);
              p.drawRoundedRect(QRectF(4.5, 12, 7, 6), 2, 2);
          } },
        { "gain", [](QPainter &p, bool strong) {
              p.setPen(Qt::NoPen);
              p.setBrush(light);
              const int bars = strong ? 4 : 2;
              for (int i = 0; i < 4; ++i) {
                  p.setBrush(i < bars ? light : QColor(90, 90, 90));
                  p.drawRect(QRectF(3 + i * 4, 16 - (i + 1) * 3.3, 2.8, (i + 1) * 3.3));
              }
          } },
        { "color", [](QPainter &p, bool strong) {
              const QColor colors[3] = { QColor(230, 70, 70), QColor(80, 200, 100), QColor(80, 130, 240) };
              const QPointF centres[3] = { QPointF(10, 7), QPointF(7, 12), QPointF(13, 12) };
              for (int i = 0; i < 3; ++i) {
                  QColor c = colors[i];
                  if (!strong)
                      c.setHsv(c.hue(), 60, 180);
                  c.setAlpha(190);
                  p.setPen(Qt::NoPen);
                  p.setBrush(c);
                  p.drawEllipse(centres[i], 4.5, 4.5);
              }
          } },
        { "sharpness", [](QPainter &p, bool strong) {
              p.setPen(QPen(light, strong ? 1.6 : 3.2, Qt::SolidLine, strong ? Qt::SquareCap : Qt::RoundCap,
                            strong ? Qt::MiterJoin : Qt::RoundJoin));
              p.setBrush(Qt::NoBrush);
              p.drawPolygon(QPolygonF({ QPointF(10, 3), QPointF(17, 16), QPointF(3, 16) }));
          } },
        { "exposure", [](QPainter &p, bool strong) {
              p.setPen(QPen(light, 1.3));
              p.setBrush(Qt::NoBrush);
              p.drawRect(QRectF(3, 3, 14, 14));
              p.drawLine(QPointF(3, 17), QPointF(17, 3));
              p.setPen(QPen(light, 1.5));
              p.drawLine(QPointF(5, 7), QPointF(9, 7));
              if (strong)
                  p.drawLine(QPointF(7, 5), QPointF(7, 9));
              p.drawLine(QPointF(11, 13), QPointF(15, 13));
          } },
    };
    for (const auto &[name, draw] : icons) {
        for (const bool strong : { false, true }) {
            QImage image = canvas(20, 20);
            QPainter p(&image);
            p.setRenderHint(QPainter::Antialiasing);
            draw(p, strong);
            p.end();
            save(image, QStringLiteral("VideoConfig/icon_%1%2.png").arg(QLatin1String(name)).arg(strong ? 2 : 1, 2, 10, QLatin1Char('0')));
        }
    }

    // The Auto buttons' backgrounds: off is a plain plate, on is lit.
    for (const bool on : { false, true }) {
        QImage image = canvas(50, 20);
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        QLinearGradient g(0, 0, 0, 20);
        g.setColorAt(0, on ? QColor(110, 200, 218) : QColor(84, 84, 88));
        g.setColorAt(1, on ? QColor(40, 130, 150) : QColor(50, 50, 54));
        p.setPen(QPen(on ? QColor(160, 230, 240) : QColor(30, 30, 30), 1));
        p.setBrush(g);
        p.drawRoundedRect(QRectF(0.5, 0.5, 49, 19), 5, 5);
        p.end();
        save(image, on ? QStringLiteral("VideoConfig/bg_noclick_auto_on.png") : QStringLiteral("VideoConfig/bg_click_auto.png"));
    }
}

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        QTextStream(stderr) << "usage: orvix_artwork <res folder>\n";
        return 1;
    }
    outputRoot = QString::fromLocal8Bit(argv[1]);
    drawSplash();
    drawIcon();
    drawPanels();
    drawButtons();
    drawSmallIcons();
    drawWaitingSignal();
    drawRecordingAnimation();
    drawLevelFrames();
    drawVideoConfig();
    return 0;
}
