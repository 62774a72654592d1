#include "simulator/driver/UsbPort.h"

namespace Simulator::Devices
{
namespace
{
// Vendor number that is given away for tests.
constexpr USHORT g_nVendor = 0x1209;
constexpr ULONG g_nAllAnswers = 0xFFFFFFFF;

USB_DEVICE_DESCRIPTOR DescriptorOf(ULONG port, ULONG deviceClass)
{
    USB_DEVICE_DESCRIPTOR descriptor{};
    descriptor.bLength = sizeof(descriptor);
    descriptor.bDescriptorType = USB_DEVICE_DESCRIPTOR_TYPE;
    descriptor.bcdUSB = 0x0201;
    descriptor.bDeviceClass = static_cast<UCHAR>(deviceClass);
    descriptor.bMaxPacketSize0 = 64;
    descriptor.idVendor = g_nVendor;
    descriptor.idProduct = static_cast<USHORT>(port);
    descriptor.bcdDevice = 0x0100;
    descriptor.bNumConfigurations = 1;
    return descriptor;
}
} // namespace

void UsbPort::MakeEmpty(ULONG port)
{
    RtlZeroMemory(&m_answers, sizeof(m_answers));
    m_answers.m_nPort = port;
    m_answers.m_nConnectionStatus = NoDeviceConnected;
    m_answers.m_nDriverKeyFailure = STATUS_NOT_FOUND;
}

void UsbPort::Connect(ULONG port, ULONG deviceClass)
{
    MakeEmpty(port);
    m_answers.m_nConnectionStatus = DeviceConnected;
    m_answers.m_nDeviceClass = deviceClass;
    m_answers.m_nDriverKeyAnswers = g_nAllAnswers;
    RtlCopyMemory(m_answers.m_szDriverKey, DriverKeys[port - 1], sizeof(DriverKeys[0]));
}

NTSTATUS UsbPort::Describe(USB_NODE_CONNECTION_INFORMATION_EX& information) const
{
    if (m_answers.m_nConnectionFailure != STATUS_SUCCESS)
        return m_answers.m_nConnectionFailure;
    information.ConnectionIndex = m_answers.m_nPort;
    information.ConnectionStatus = static_cast<USB_CONNECTION_STATUS>(m_answers.m_nConnectionStatus);
    if (information.ConnectionStatus == DeviceConnected)
    {
        information.DeviceDescriptor = DescriptorOf(m_answers.m_nPort, m_answers.m_nDeviceClass);
        information.CurrentConfigurationValue = 1;
        information.Speed = UsbHighSpeed;
        information.DeviceAddress = static_cast<USHORT>(m_answers.m_nPort);
    }
    return STATUS_SUCCESS;
}

NTSTATUS UsbPort::DriverKey(const wchar_t*& name, ULONG& characters, ULONG& declaredBytes)
{
    if (m_answers.m_nDriverKeyAnswers == 0)
        return m_answers.m_nDriverKeyFailure;
    if (m_answers.m_nDriverKeyAnswers != g_nAllAnswers)
        --m_answers.m_nDriverKeyAnswers;
    name = m_answers.m_szDriverKey;
    characters = 1;
    while (characters < DriverKeyRoom && name[characters - 1] != L'\0')
        ++characters;
    constexpr ULONG offset = FIELD_OFFSET(USB_NODE_CONNECTION_DRIVERKEY_NAME, DriverKeyName);
    const ULONG bytes = offset + characters * ULONG{sizeof(wchar_t)};
    declaredBytes = m_answers.m_nDriverKeyLength != 0 ? m_answers.m_nDriverKeyLength : bytes;
    return STATUS_SUCCESS;
}
} // namespace Simulator::Devices
