#pragma once

#include "OssCore/Documents/OssSerializableObject.h"
#include "OssCore/Values/OssColor.h"
#include "OssEvaluation/Values/OssEvDepth.h"
#include "OssModel/OssModel_export.h"

#include <QMap>
#include <QPointer>

#include <memory>

class OssChannel;
class OssLivePaint;

/// The images of one texture, one per UDIM patch, and how they are to be understood. Saved with the
/// shading context that owns it.
class OSSMODEL_EXPORT OssImageSet : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(int depth READ depth WRITE setDepth)
    Q_PROPERTY(int bleed READ bleed WRITE setBleed)
    Q_PROPERTY(QString fileSpace READ fileSpace WRITE setFileSpace)
    Q_PROPERTY(bool scalar READ isScalar WRITE setScalar STORED isScalar)
    Q_PROPERTY(int resolution READ resolution WRITE setResolution)
    Q_PROPERTY(OssColor fillColor READ fillColor WRITE setFillColor)

public:
    explicit OssImageSet(const QString &name, QObject *parent = nullptr);
    ~OssImageSet() override;

    /// Unique within its shading context.
    QString name() const { return m_name; }

    /// The channel that these images are the paint of; null when there is none.
    OssChannel *channel() const;
    void setChannel(OssChannel *channel);

    static constexpr int ShortDepth = 5123;
    static constexpr int HalfDepth = 5131;
    static constexpr int FloatDepth = 5126;

    /// GL type code of a component: 5121 is 8 bits, 5123 16, 5131 half, 5126 single precision.
    int depth() const { return m_depth; }

    /// The same for the engine; half for codes that mean nothing.
    OssEvDepth engineDepth() const;
    static int codeOf(OssEvDepth depth);

    void setDepth(int depth) { m_depth = depth; }

    /// Pixels by which colour goes on beyond the patch's shapes, where the patch is 4096 wide; in
    /// proportion for other sizes.
    int bleed() const { return m_bleed; }

    void setBleed(int bleed) { m_bleed = bleed; }

    /// Colour space in which whole numbers are counted; empty for the usual one, that of screens.
    QString fileSpace() const { return m_fileSpace; }

    void setFileSpace(const QString &space) { m_fileSpace = space; }

    /// Values that are no colours: masks, heights.
    bool isScalar() const { return m_scalar; }

    void setScalar(bool scalar) { m_scalar = scalar; }

    /// Width and height of a patch in pixels.
    int resolution() const { return m_resolution; }

    /// What is no size, as files may have it, is refused with a line.
    void setResolution(int resolution);

    /// Names of pixel files by UDIM patch; a patch that nothing was written to has none.
    QMap<int, QString> pixels() const { return m_pixels; }

    /// Undoable.
    void setPixels(const QMap<int, QString> &pixels);

    /// Where paint is kept that is in no pixels yet; empty when there is none. Documents that are written
    /// meanwhile, copies of unsaved work, name it. Not part of the state, and not undoable.
    QString unbakedPaint() const { return m_unbakedPaint; }

    void setUnbakedPaint(const QString &name) { m_unbakedPaint = name; }

    /// The same paint, as what is evaluated meanwhile shows it; null when there is none.
    const std::shared_ptr<const OssLivePaint> &livePaint() const { return m_livePaint; }

    void setLivePaint(std::shared_ptr<const OssLivePaint> paint) { m_livePaint = std::move(paint); }

    /// Of pixels that nothing was written to.
    OssColor fillColor() const { return m_fillColor; }

    void setFillColor(const OssColor &color) { m_fillColor = color; }

    /// A short text for all settings that decide what a bake makes of its pixels, but for the size.
    QString form() const;

    /// 8-bit colour, in which precision is short.
    bool isByteColor() const;
    /// The same pixels and settings under another name; the caller owns it.
    OssImageSet *duplicate(const QString &name) const;
    /// All but channel, pixels and resolution. Of a set that is not in a document yet.
    void copySettings(const OssImageSet &other);

    bool saveObjects(OssSerializer &serializer) override;
    bool onLoadElement(OssDeserializer &deserializer, const QString &name,
                       const Attributes &attributes) override;

Q_SIGNALS:
    void pixelsChanged();

private:
    QString m_name;
    QPointer<QObject> m_channel;
    int m_depth;
    int m_bleed = 16;
    int m_resolution = 2048;
    QString m_fileSpace;
    QMap<int, QString> m_pixels;
    QString m_unbakedPaint;
    std::shared_ptr<const OssLivePaint> m_livePaint;
    bool m_scalar = false;
    OssColor m_fillColor{0.0, 0.0, 0.0, 0.0};
};
