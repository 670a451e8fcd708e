#include "examples/featureexamples.h"

#include "examples/blockdump.h"
#include "examples/exampleimage.h"

namespace
{

constexpr int slotCapacity = 19;
constexpr int slotSize = 20;

BlockDump dumpOf(quint8 ch)
{
    optionsNOX8 image;
    fillExampleImage(image);
    BlockDump dump(encodeFeature(*image.getFeature(ch)));
    dump.show(1, "type");
    dump.show(3, "0");
    dump.showText("name", 39);
    return dump;
}

void showSlot(BlockDump &dump, int slot)
{
    dump.showText(QStringLiteral("slot %1").arg(slot), slotCapacity);
}

void skipSlots(BlockDump &dump, int first, int last)
{
    dump.skip(slotSize * (last - first + 1), QStringLiteral("slots %1 to %2").arg(first).arg(last));
}

QStringList finished(BlockDump dump)
{
    dump.skip(208, "zeros");
    return dump.lines();
}

} // namespace

QStringList polynomialExample()
{
    BlockDump dump = dumpOf(1);
    for (const char *name : {"C0", "C1", "C2"})
        dump.showNumber(name);
    dump.skip(28, "C3 to C9");
    showSlot(dump, 0);
    showSlot(dump, 1);
    skipSlots(dump, 2, 9);
    return finished(dump);
}

QStringList callendarVanDusenExample()
{
    BlockDump dump = dumpOf(0);
    dump.skip(40, "C0 to C9 as fitted");
    showSlot(dump, 0);
    showSlot(dump, 1);
    skipSlots(dump, 2, 5);
    dump.skip(80, "slots 6 to 9: zeros");
    return finished(dump);
}

QStringList its90Example()
{
    BlockDump dump = dumpOf(2);
    for (const char *name : {"value 0", "value 1", "value 2", "value 3", "value 4"})
        dump.showNumber(name);
    dump.skip(16, "values 5 to 8");
    dump.showNumber("unused");
    skipSlots(dump, 0, 2);
    for (const int slot : {3, 4, 5})
        showSlot(dump, slot);
    skipSlots(dump, 6, 9);
    return finished(dump);
}

QStringList tableExample()
{
    BlockDump dump = dumpOf(3);
    for (const char *name : {"T 0", "U 0", "T 1", "U 1", "T 2", "U 2"})
        dump.showNumber(name);
    dump.showNumber("T 3, the last pair once more");
    dump.showNumber("U 3");
    dump.skip(52 * 8, "pairs 4 to 55, the same");
    return dump.lines();
}
