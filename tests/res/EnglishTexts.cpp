#include "tests/res/EnglishTexts.h"

namespace ResourceTests
{

namespace
{

constexpr EnglishText Texts[] = {
    {500, L"Orvik Notifications"},
    {501, L"For full performance, connect a higher capacity power adapter."},
    {502, L"Smart AC adapter power output is too low for this computer."},
    {503, L"The Smart AC Adapter is not functioning correctly."},
    {504, L"Orvik Smart Adapter"},
    {505, L"ORVIKNOTIFICATIONS"},
    {506, L"Device is not supported."},
    {507, L"USB Type-C? Connector"},
    {508, L"Orvik Veritor detected an unauthorized intrusion to the Orvik runtime system firmware "
          L"executing in main memory.\r\n\r\n"
          L"This security event could be an indication of an attempted attack to the Orvik runtime system "
          L"firmware.? Please close all applications and restart the computer. Orvik Veritor will attempt "
          L"to repair and recover the system firmware.\r\n\r\n"
          L"The repeated occurrence of this problem may indicate an ongoing security concern in the "
          L"operating system software.\r\n\r\n"
          L"For more Orvik Veritor event details, refer to the Windows Event Log."},
    {509, L"The connected device exceeds the power limit of the USB-C? port."},
    {510, L"The USB-C? port is not working. The connected device caused a power surge. Please disconnect."},
    {511, L"The system does not support one of the connected expansion modules."},
    {512, L"The system configuration exceeds the number of supported expansion modules."},
    {513, L"The Thunderbolt? module must be attached directly below the system module."},
    {514, L"For more information , select here"},
    {515, L"Your keyboard firmware is out of date. To ensure no functionality loss, please restart your "
          L"system to automatically update."},
    {516, L"Wireless Charging is in progess"},
    {517, L"The device plugged into the USB-C port cannot charge your PC."},
    {518, L"USB device is requesting more power than system can provide."},
    {519, L"Charging from multiple USB ports may have limited support."},
    {520, L"For full performance, connect higher capacity USB cable to dock."},
    {521, L"The power adapter is not compatible with this system."},
    {522, L"Unsupported adapter. Connect a system compatible Orvik adapter."},
    {523, L"Orvik Veritor detected an unauthorized modification to the system firmware.\r\n\r\n"
          L"Please save all data files and shut down the computer to enable Orvik Veritor to repair and "
          L"recover the system firmware."},
    {524, L"Orvik Veritor detected an unauthorized modification to the system firmware.\r\n\r\n"
          L"Orvik Veritor automatically recovered the system firmware."},
    {525, L"Orvik Veritor detected an unauthorized modification to the system firmware.\r\n\r\n"
          L"Please save all data files and shut down the computer to enable Orvik Veritor to repair and "
          L"recover the system firmware."},
    {526, L"Device mode is not supported. Check cable or system capabilities."},
    {527, L"Orvik recommends using an Orvik power source."},
    {528, L"The connected power source cannot fully power your device. For full performance, use a higher "
          L"capacity power source."},
    {529, L"Orvik Veritor detected an unauthorized modification to the system firmware.\r\n\r\n"
          L"Your computer will automatically power off in 15 seconds as configured in the system BIOS "
          L"Orvik Veritor Security Event Policy."},
    {530, L"Orvik Veritor repaired an unauthorized modification to the system firmware boot image in flash "
          L"memory.\r\n\r\n"
          L"The recurrence of this problem indicates a security concern that should not be ignored. "
          L"\r\n\r\n"
          L"For more Orvik Veritor event details, refer to the Windows Event Log."},
    {531, L"Orvik Veritor detected an unauthorized modification to the system firmware.\r\n\r\n"
          L"Orvik Veritor was unable to recover the system firmware due to either Orvik Veritor recovery "
          L"policy being configured to manual, or an issue accessing the flash while the operating system "
          L"is running.\r\n\r\n"
          L"Please shut down the computer to allow Orvik Veritor to automatically recover the system "
          L"firmware.\r\n\r\n"
          L"The repeated occurrence of this problem may indicate an ongoing security concern in the "
          L"operating system software.\r\n\r\n"
          L"For more Orvik Veritor event details, refer to the Windows Event Log."},
    {532, L"Unknown device"},
    {533, L"Thank You for choosing an Orvik product!"},
    {534, L"Your computer is designed to vary performance as needed when a smaller capacity Smart AC "
          L"Adapter is connected. However your computer exceeds the power rating for the Smart AC Adapter "
          L"connected.  Please connect a higher capacity Smart AC Adapter."},
    {535, L"Orvik offers a wide range of Smart AC Adapter for your convenience, replacement, and travel "
          L"needs. Find these accessories and more at select retailers."},
    {536, L"The Smart AC Adapter connected will power your computer, but potentially at a reduced "
          L"performance level. Your computer is designed to vary performance as needed when a smaller "
          L"capacity Smart AC Adapter is connected.  Resource intensive tasks may cause your system not to "
          L"perform at its highest level with a smaller capacity Smart AC Adapter.  Please connect a "
          L"higher capacity Smart AC Adapter for full performance."},
    {537, L"The Smart AC Adapter connected is not functioning correctly. Please replace with a functioning "
          L"Smart AC Adapter."},
    {538, L"Support Status"},
    {539, L"Supported"},
    {540, L"Not Supported"},
    {541, L"USB Type-C? Features:"},
    {542, L"USB Type-C? Information"},
    {543, L"DisplayPort"},
    {544, L"Thunderbolt"},
    {545, L"Feature"},
    {546, L"USB Devices"},
    {547, L"Power Provider"},
    {548, L"Power Consumer"},
    {549, L"USB 3.1 Gen 1"},
    {550, L"USB 3.1 Gen 2"},
    {551, L"Max Power Output"},
    {552, L"Orvik Veritor's ability to detect intrusions has been disabled. This may have been due to an "
          L"unexpected hardware or software event in the system. Please save your work and reboot. If this "
          L"repeatedly occurs, please contact IT support. \r\n\r\n\r\n"
          L"For more information please visit"},
    {553, L"https://support.orvik.example/veritor"},
    {554, L"The BIOS has lost the communication with the Orvik Wardline software, which indicates that the "
          L"system may have been tampered with.\r\n\r\n"
          L"Please save all data files and Restart (not Shutdown, Hibernate or Sleep) the computer to "
          L"allow Orvik Wardline to attempt to recover its software."},
    {555, L"Your device does not support Orvik Lumbra."},
    {556, L"Do not display this message again."},
    {557, L"Performance reduced to prevent battery drain. Please disconnect USB devices to restore system "
          L"performance."},
    {558, L"System Performance restored."},
};

} // namespace

std::span<const EnglishText> EnglishTexts()
{
    return Texts;
}

} // namespace ResourceTests
