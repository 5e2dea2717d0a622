#include "dicomobjects.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcfilefo.h>
#include <dcmtk/dcmdata/dcuid.h>
#include <dcmtk/dcmdata/libi2d/i2d.h>
#include <dcmtk/dcmdata/libi2d/i2djpgs.h>
#include <dcmtk/dcmdata/libi2d/i2dplvlp.h>

#include "hospital/mp4summary.h"

namespace {

void put(DcmItem &item, const DcmTagKey &tag, const QString &value)
{
    item.putAndInsertString(tag, value.toUtf8().constData());
}

// DICOM names are "Family^Given"; a name typed as "Family, Given" is turned
// into that form, anything else is kept as typed.
QString personName(const QString &typed)
{
    if (typed.contains(QLatin1Char('^')))
        return typed.trimmed();
    const int comma = typed.indexOf(QLatin1Char(','));
    if (comma < 0)
        return typed.trimmed();
    return typed.left(comma).trimmed() + QLatin1Char('^') + typed.mid(comma + 1).trimmed();
}

// The modules both objects share: patient, study, series, equipment,
// general image, acquisition context and SOP common.
void putCommon(DcmItem &item, const ObjectContext &context, const char *sopClass)
{
    const WorklistEntry &worklist = context.study.worklist;
    const QString date = context.taken.toString(QStringLiteral("yyyyMMdd"));
    const QString time = context.taken.toString(QStringLiteral("HHmmss"));
    put(item, DCM_SpecificCharacterSet, QStringLiteral("ISO_IR 192"));
    item.putAndInsertString(DCM_SOPClassUID, sopClass);
    put(item, DCM_SOPInstanceUID, DicomUid::make());
    put(item, DCM_InstanceCreationDate, QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd")));
    put(item, DCM_InstanceCreationTime, QDateTime::currentDateTime().toString(QStringLiteral("HHmmss")));
    put(item, DCM_StudyDate, date);
    put(item, DCM_StudyTime, time);
    put(item, DCM_SeriesDate, date);
    put(item, DCM_SeriesTime, time);
    put(item, DCM_ContentDate, date);
    put(item, DCM_ContentTime, time);
    put(item, DCM_AcquisitionDateTime, date + time);
    put(item, DCM_AccessionNumber, worklist.accessionNumber);
    put(item, DCM_Modality, QStringLiteral("ES"));
    put(item, DCM_Manufacturer, QStringLiteral("Kelvane"));
    put(item, DCM_InstitutionName, context.hospital);
    put(item, DCM_ReferringPhysicianName, QString());
    put(item, DCM_StudyDescription, worklist.requestedProcedure);
    put(item, DCM_SeriesDescription, context.description);
    put(item, DCM_PerformingPhysicianName, personName(context.doctor));
    put(item, DCM_ManufacturerModelName, QStringLiteral("Orvix"));
    put(item, DCM_SoftwareVersions, QStringLiteral("2.0.1"));
    put(item, DCM_PatientName, worklist.patientName.isEmpty() ? personName(context.patientName) : worklist.patientName);
    put(item, DCM_PatientID, worklist.patientId);
    put(item, DCM_PatientBirthDate, QString());
    put(item, DCM_PatientSex, QString());
    put(item, DCM_StudyInstanceUID, context.study.studyInstanceUid);
    put(item, DCM_SeriesInstanceUID, context.study.seriesInstanceUid);
    put(item, DCM_StudyID, worklist.requestedProcedureId);
    put(item, DCM_SeriesNumber, QString::number(context.seriesNumber));
    put(item, DCM_InstanceNumber, QString::number(context.instanceNumber));
    put(item, DCM_PatientOrientation, QString());
    put(item, DCM_ImageType, QStringLiteral("ORIGINAL\\PRIMARY"));
    put(item, DCM_LossyImageCompression, QStringLiteral("01"));
    item.insertEmptyElement(DCM_AcquisitionContextSequence);
    if (!worklist.requestedProcedureId.isEmpty()) {
        DcmItem *request = nullptr;
        item.findOrCreateSequenceItem(DCM_RequestAttributesSequence, request, -2);
        put(*request, DCM_RequestedProcedureID, worklist.requestedProcedureId);
        put(*request, DCM_AccessionNumber, worklist.accessionNumber);
        put(*request, DCM_StudyInstanceUID, context.study.studyInstanceUid);
    }
}

QString picture(const QString &recordedFile, const ObjectContext &context, const QString &target)
{
    // The JPEG goes in as it is; DCMTK reads its header for the pixel module.
    I2DJpegSource source;
    source.setImageFile(recordedFile.toLocal8Bit().constData());
    source.setInsistOnJFIF(OFFalse);
    I2DOutputPlugVLP output;
    Image2Dcm converter;
    DcmDataset *converted = nullptr;
    E_TransferSyntax syntax = EXS_Unknown;
    OFCondition condition = converter.convertFirstFrame(&source, &output, 1, converted, syntax);
    if (condition.good() && converted)
        condition = converter.updateLossyCompressionInfo(&source, 1, converted);
    if (condition.bad() || !converted)
        return QStringLiteral("%1 is not a JPEG picture the archive can take: %2")
            .arg(QFileInfo(recordedFile).fileName(), QString::fromLocal8Bit(condition.text()));
    DcmFileFormat file(converted);
    delete converted;
    DcmDataset &dataset = *file.getDataset();
    putCommon(dataset, context, UID_VLEndoscopicImageStorage);
    put(dataset, DCM_LossyImageCompressionMethod, QStringLiteral("ISO_10918_1"));
    const OFCondition saved = file.saveFile(target.toLocal8Bit().constData(), syntax);
    return saved.good() ? QString() : QString::fromLocal8Bit(saved.text());
}

// The encapsulated pixel data for one fragment of `length` bytes: the
// element, an empty offset table and the fragment's item header.
QByteArray pixelDataHeader(quint32 length)
{
    QByteArray header;
    auto u16 = [&header](quint16 value) { header.append(reinterpret_cast<const char *>(&value), 2); };
    auto u32 = [&header](quint32 value) { header.append(reinterpret_cast<const char *>(&value), 4); };
    static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "the encoding below is little endian");
    u16(0x7fe0), u16(0x0010), header.append("OB", 2), u16(0), u32(0xffffffff);
    u16(0xfffe), u16(0xe000), u32(0);
    u16(0xfffe), u16(0xe000), u32(length);
    return header;
}

QByteArray sequenceEnd()
{
    return QByteArray::fromHex("feffdde000000000");
}

QString movie(const QString &recordedFile, const ObjectContext &context, const QString &target)
{
    const Mp4Summary summary = Mp4Summary::read(recordedFile);
    if (!summary.valid || summary.videoFrames <= 0)
        return QStringLiteral("%1 holds no picture the archive can take (%2)")
            .arg(QFileInfo(recordedFile).fileName(), summary.error);
    QFile source(recordedFile);
    if (!source.open(QIODevice::ReadOnly))
        return source.errorString();
    const qint64 size = source.size();
    if (size >= qint64(0xfffffffe))
        return QStringLiteral("%1 is larger than one DICOM object can hold (4 GB)").arg(QFileInfo(recordedFile).fileName());

    DcmFileFormat file;
    DcmDataset &dataset = *file.getDataset();
    putCommon(dataset, context, UID_VideoEndoscopicImageStorage);
    const double fps = summary.framesPerSecond() > 0 ? summary.framesPerSecond() : 30.0;
    dataset.putAndInsertUint16(DCM_SamplesPerPixel, 3);
    put(dataset, DCM_PhotometricInterpretation, QStringLiteral("YBR_PARTIAL_420"));
    dataset.putAndInsertUint16(DCM_PlanarConfiguration, 0);
    put(dataset, DCM_NumberOfFrames, QString::number(summary.videoFrames));
    dataset.putAndInsertTagKey(DCM_FrameIncrementPointer, DCM_FrameTime);
    put(dataset, DCM_FrameTime, QString::number(1000.0 / fps, 'f', 4));
    put(dataset, DCM_CineRate, QString::number(qRound(fps)));
    put(dataset, DCM_RecommendedDisplayFrameRate, QString::number(qRound(fps)));
    put(dataset, DCM_ActualFrameDuration, QString::number(qRound(1000.0 / fps)));
    dataset.putAndInsertUint16(DCM_Rows, quint16(summary.height));
    dataset.putAndInsertUint16(DCM_Columns, quint16(summary.width));
    dataset.putAndInsertUint16(DCM_BitsAllocated, 8);
    dataset.putAndInsertUint16(DCM_BitsStored, 8);
    dataset.putAndInsertUint16(DCM_HighBit, 7);
    dataset.putAndInsertUint16(DCM_PixelRepresentation, 0);
    put(dataset, DCM_LossyImageCompressionMethod, QStringLiteral("ISO_14496_10"));
    // The sound stays inside the MP4 as recorded; its channels are not
    // described yet.
    dataset.insertEmptyElement(DCM_MultiplexedAudioChannelsDescriptionCodeSequence);

    // Everything but the pixel data through DCMTK, then the MP4 itself as
    // the one fragment, copied in pieces so a 1 GB movie needs no 1 GB of
    // memory.
    OFCondition saved = file.saveFile(target.toLocal8Bit().constData(), EXS_MPEG4HighProfileLevel4_1);
    if (saved.bad())
        return QString::fromLocal8Bit(saved.text());
    QFile output(target);
    if (!output.open(QIODevice::Append))
        return output.errorString();
    const quint32 padded = quint32(size + (size & 1));
    output.write(pixelDataHeader(padded));
    QByteArray chunk;
    while (!(chunk = source.read(4 << 20)).isEmpty()) {
        if (output.write(chunk) != chunk.size())
            return output.errorString();
    }
    if (size & 1)
        output.write(QByteArray(1, '\0'));
    output.write(sequenceEnd());
    if (!output.flush())
        return output.errorString();
    return QString();
}

} // namespace

namespace DicomObjects {

Kind kindOf(const QString &recordedFile)
{
    return QFileInfo(recordedFile).suffix().compare(QLatin1String("jpg"), Qt::CaseInsensitive) == 0 ? Kind::Picture
                                                                                                   : Kind::Movie;
}

QString write(const QString &recordedFile, const ObjectContext &context, const QString &target)
{
    return kindOf(recordedFile) == Kind::Picture ? picture(recordedFile, context, target)
                                                 : movie(recordedFile, context, target);
}

} // namespace DicomObjects
