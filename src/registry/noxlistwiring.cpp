#include "registry/noxlist.h"
#include "serial/noxserialport.h"

namespace
{

constexpr quint8 connectionLostCode = 200;

} // namespace

/** Connects what a record of this registry reports. */
void noxList::setSignal(_nox *nox)
{
    connect(nox->txTimer.get(), &QTimer::timeout, this,
            [this, index = nox->index] { writePending(index); });
    connectRequests(nox);
    connectChanges(nox);
}

/**
 * Connects the multiplexer, once and from the beginning: whoever listens to it later finds replies
 * applied to the records that were there, and not to one that he makes of the reply himself.
 */
void noxList::connectSerialPort()
{
    connect(m_serialPort, QOverload<int, QByteArray *, quint8>::of(&NOXSerialPort::readyDevReply),
            this, &noxList::applyDevQuery);
    connect(m_serialPort, &NOXSerialPort::doneSendDevData, this, &noxList::onDoneSendDevData);
    connect(m_serialPort, &NOXSerialPort::readyDevMeas, this, &noxList::onReadyDevMeas);
    connect(m_serialPort, QOverload<int, quint16>::of(&NOXSerialPort::onDevError), this,
            &noxList::onLinkError);
}

/** What the image asks to be written. */
void noxList::connectRequests(_nox *nox)
{
    using Image = optionsNOX8;
    const Image *const image = nox->opt.get();
    const auto request = [this, nox](Image::tx_code code) {
        return [this, nox, code] { sendNoxData(nox->index, code); };
    };
    connect(image, &Image::onChApply, this, [this, nox, index = nox->index](quint8 ch) {
        writeChannel(nox, ch);
        storeUnit(index, ch);
    });
    connect(image, &Image::onIdentApply, this, [this, nox] { applyIdentity(nox); });
    connect(image, &Image::onSNApply, this, [this, nox, image] {
        if (image->devNumber != 0 && image->getDevRev() != 0)
            sendNoxData(nox->index, Image::txSerialNumber);
    });
    connect(image, &Image::onDevApply, this, [this, nox] { applyDevice(nox); });
    connect(image, &Image::onRefApply, this, request(Image::txReferenceData));
    connect(image, &Image::onRefShiftApply, this, [this, nox, image] {
        if (image->getDevRev() != 0)
            sendNoxData(nox->index, Image::txZeroShifts);
    });
    connect(image, &Image::onChErrorData, this, [this, nox] {
        if (m_serialPort->isEmptyDataQueue(nox->devIndex) &&
            m_serialPort->isEmptyQueryQueue(nox->devIndex))
            getOptFromNox(nox->index);
    });
}

/** What of the image has changed. */
void noxList::connectChanges(const _nox *nox)
{
    using Image = optionsNOX8;
    const Image *const image = nox->opt.get();
    connect(image, &Image::onChChange, this, [this, index = nox->index](quint8 ch) {
        emit onChChange(index, ch);
        storeUnit(index, ch);
    });
    connect(image, &Image::onDevChange, this, [this, nox] {
        setCommandByte(nox);
        emit onDevChange(nox->index);
    });
    connect(image, &Image::onIdentChange, this, [this, index = nox->index] {
        if (_nox *record = getNoxByIndex(index))
            storeIdentity(record);
    });
    connect(image, &Image::onRefChange, this, [this, nox] { emit onRefChange(nox->index); });
    connect(image, &Image::onRefShiftChange, this,
            [this, nox] { emit onRefShiftChange(nox->index); });
    connect(image, &Image::onRecData, this,
            [this, nox](const QMap<quint8, QVector<optionsNOX8::_recItem>> &records,
                        const QDateTime &start) { emit onReadRec(nox->index, records, start); });
}

void noxList::onReadyDevMeas(int devIndex, double meas, quint8 ch, char dim)
{
    const _nox *nox = getNoxByDevIndex(devIndex);
    // values measured before a change that is still to be written are not shown after it
    if (!nox || nox->qwtIndex < 0 || !nox->processed || !nox->txCodes.isEmpty())
        return;
    const quint8 channel = ch - 1;
    emit onReadMeas(nox->index, meas, channel, unitText(*nox, channel, dim));
}

/** The user's unit where the channel has one and is on, else that of the stream. */
QString noxList::unitText(const _nox &nox, quint8 ch, char dim) const
{
    const optionsNOX8::_ch channel = nox.opt->getCh(ch);
    const bool custom = channel.measType == measTemperatureCustom && channel.onOff != 0;
    return custom ? nox.opt->getChMeasTypeName(ch) : nox.opt->getDim(dim);
}

void noxList::onLinkError(int devIndex, quint16 code)
{
    const _nox *nox = getNoxByDevIndex(devIndex);
    if (!nox)
        return;
    const int index = nox->index;
    nox->opt->blockSignals(false);
    disConnByIndex(index);
    emit onDevError(index, connectionLostCode, tr("Обрыв связи [код %1]").arg(code));
}
