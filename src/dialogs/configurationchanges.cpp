#include "dialogs/configurationchanges.h"

#include "device/configuration.h"
#include "device/heldblocks.h"
#include "device/optionsnox8.h"

namespace
{

/** A user's unit is no setting of the instrument's: to it both kinds of temperature are one. */
std::array<bool, channelSettings> channelChanges(const ChannelSettings &held,
                                                 const ChannelSettings &now)
{
    return {held.onOff != now.onOff,
            highNibble(held.measType) != highNibble(now.measType),
            held.current != now.current,
            held.resist != now.resist,
            held.featureType != now.featureType || held.feature != now.feature,
            held.featureTypeCompensTP != now.featureTypeCompensTP ||
                held.featureCompensTP != now.featureCompensTP};
}

} // namespace

ConfigurationChanges configurationChanges(const HeldBlocks &held, const optionsNOX8 &image)
{
    ConfigurationChanges changes;
    const auto known = held.configuration(image.getDevChCount());
    if (!known)
        return changes;
    const OperatingSettings &settings = known->settings;
    changes.identity = image.identApplyPending && image.getDevRev() != 0;
    changes.rounding = settings.devMeasRound != image.devMeasRound;
    changes.measurementTime = settings.devMeasTime != image.devMeasTime;
    changes.mode = settings.devMeasMode != image.devMeasMode;
    changes.compensation = settings.devCompensTP != image.devCompensTP;
    changes.reversal = settings.devChRevers != image.devChRevers;
    changes.shortCircuit = settings.devZakorotka != image.devZakorotka;
    for (int i = 0; i < known->channels.size(); ++i) {
        changes.channels << channelChanges(known->channels.at(i), image.channels.at(i));
        changes.characteristics << (encodeFeature(known->features.at(i)) !=
                                    encodeFeature(*image.features.at(i)));
    }
    return changes;
}
