#include "app/alarmsound.h"

#include <QtEndian>
#include <QtTest>

#include <algorithm>
#include <cmath>

/** The sound of the limit alarm, and how often it is played. */
class TestAlarmSound : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void isPlainSamplesInOneChannel();
    void isTwoTonesOfHalfScale();
    void neitherClicksNorStopsShort();
    void playsOneAtATime();

private:
    template<typename Number>
    Number numberAt(int offset) const
    {
        return qFromLittleEndian<Number>(m_file.constData() + offset);
    }
    /** The loudest sample between two moments. */
    int peak(double fromSeconds, double toSeconds) const
    {
        int loudest = 0;
        const int last = qMin(int(toSeconds * m_rate), m_samples.size());
        for (int i = int(fromSeconds * m_rate); i < last; ++i)
            loudest = qMax(loudest, std::abs(m_samples.at(i)));
        return loudest;
    }

    static constexpr int headerSize = 44;
    QByteArray m_file;
    QVector<int> m_samples;
    int m_rate = 0;
};

void TestAlarmSound::initTestCase()
{
    QFile file(":/resource/alert.wav");
    QVERIFY(file.open(QIODevice::ReadOnly));
    m_file = file.readAll();
    QVERIFY(m_file.size() > headerSize);
    m_rate = numberAt<qint32>(24);
    for (int offset = headerSize; offset < m_file.size(); offset += 2)
        m_samples << numberAt<qint16>(offset);
}

void TestAlarmSound::isPlainSamplesInOneChannel()
{
    QVERIFY(m_file.size() < 100 * 1024);
    QCOMPARE(m_file.mid(0, 4), QByteArray("RIFF"));
    QCOMPARE(numberAt<quint32>(4), quint32(m_file.size() - 8));
    QCOMPARE(m_file.mid(8, 8), QByteArray("WAVEfmt "));
    QCOMPARE(numberAt<quint16>(20), quint16(1)); // plain samples
    QCOMPARE(numberAt<quint16>(22), quint16(1)); // channels
    QCOMPARE(numberAt<quint32>(28), quint32(2 * m_rate));
    QCOMPARE(numberAt<quint16>(34), quint16(16)); // bits
    QCOMPARE(m_file.mid(36, 4), QByteArray("data"));
    QCOMPARE(numberAt<quint32>(40), quint32(m_file.size() - headerSize));
}

void TestAlarmSound::isTwoTonesOfHalfScale()
{
    const double length = double(m_samples.size()) / m_rate;
    QVERIFY(length > 0.4 && length < 1.5);
    const int loudest = peak(0, length);
    QVERIFY(std::abs(loudest - 32767 / 2) < 1000);
    // the second one starts where the first has faded
    const int first = peak(0, 0.05);
    const int between = peak(0.18, 0.21);
    const int second = peak(0.22, 0.27);
    QVERIFY2(between < first / 3, qPrintable(QString::number(between)));
    QVERIFY2(between < second / 3, qPrintable(QString::number(between)));
}

void TestAlarmSound::neitherClicksNorStopsShort()
{
    constexpr int inaudible = 30;
    QVERIFY(std::abs(m_samples.first()) < inaudible);
    QVERIFY(std::abs(m_samples.last()) < inaudible);
    const double length = double(m_samples.size()) / m_rate;
    QVERIFY(peak(length - 0.005, length) < inaudible);
    // the steepest step is that of the tone itself, not a jump
    int steepest = 0;
    for (int i = 1; i < m_samples.size(); ++i)
        steepest = qMax(steepest, std::abs(m_samples.at(i) - m_samples.at(i - 1)));
    constexpr double pi = 3.14159265358979323846;
    constexpr double highestHertz = 1200;
    QVERIFY(steepest < 2 * pi * highestHertz / m_rate * 32767 / 2);
}

void TestAlarmSound::playsOneAtATime()
{
    AlarmSound sound;
    int plays = 0;
    bool finished = true;
    sound.setPlayer({[&] {
                         ++plays;
                         finished = false;
                     },
                     [&finished] { return finished; }});
    for (int alarm = 0; alarm < 3; ++alarm)
        sound.play();
    QCOMPARE(plays, 1);
    finished = true;
    sound.play();
    QCOMPARE(plays, 2);
}

QTEST_GUILESS_MAIN(TestAlarmSound)
#include "tst_alarmsound.moc"
