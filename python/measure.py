#!/usr/bin/python3
"""How long a certificate takes to become plain Python values, beside asn1crypto and pyasn1.

Usage: measure.py CERTIFICATE... (DER, PEM or hexadecimal digits; one measurement for each)

Each package does what leads to dicts and lists of everything in the certificate, values of known
extensions included. Libraries that are missing are left out (python3-asn1crypto, python3-pyasn1,
python3-pyasn1-modules). Medians of seven rounds in one process, the packages taking turns.
"""

import statistics
import sys
import time

import brevantis_asn1


def contestants():
    """Name of a task, what makes one of the octets that does it, and whether it is ours."""
    yield "decode, brevantis_asn1", lambda der: lambda: brevantis_asn1.decode(der, "Certificate")
    try:
        from asn1crypto import x509

        yield "decode, asn1crypto", lambda der: lambda: x509.Certificate.load(der).native
    except ImportError:
        print("asn1crypto is missing")
    try:
        from pyasn1.codec.der import decoder
        from pyasn1.codec.native import encoder
        from pyasn1_modules import rfc5280

        def convert(der):
            certificate, _ = decoder.decode(
                der, asn1Spec=rfc5280.Certificate(), decodeOpenTypes=True
            )
            value = encoder.encode(certificate)
            # Open types of extensions stand in OCTET STRINGs, which are decoded one by one.
            value["extensions"] = [
                encoder.encode(
                    decoder.decode(
                        extension["extnValue"],
                        asn1Spec=rfc5280.certificateExtensionsMap[extension["extnID"]],
                    )[0]
                )
                for extension in certificate["tbsCertificate"]["extensions"]
                if extension["extnID"] in rfc5280.certificateExtensionsMap
            ]
            return value

        yield "decode, pyasn1", lambda der: lambda: convert(der)
    except ImportError:
        print("pyasn1 or its modules are missing")

    def back(der):
        value = brevantis_asn1.decode(der, "Certificate")
        return lambda: brevantis_asn1.encode("Certificate", value)

    yield "encode, brevantis_asn1", back


def takes(name, task):
    """Whether a package takes this certificate at all."""
    try:
        task()
    except Exception as error:
        print(f"  {name:24} refuses it: {str(error).splitlines()[0]}")
        return False
    return True


def microseconds(task, seconds=0.2):
    """Of the processor's time, whatever else the machine does."""
    count = 0
    start = time.process_time()
    while time.process_time() - start < seconds:
        task()
        count += 1
    return (time.process_time() - start) / count * 1e6


def main(paths):
    for path in paths:
        with open(path, "rb") as file:
            der = next(brevantis_asn1.messages(file.read())).octets
        print(f"{path}: {len(der)} octets")
        tasks = [(name, make(der)) for name, make in contestants()]
        tasks = [(name, task) for name, task in tasks if takes(name, task)]
        rounds = {name: [] for name, _ in tasks}
        for _ in range(7):
            for name, task in tasks:
                rounds[name].append(microseconds(task))
        ours = statistics.median(rounds["decode, brevantis_asn1"])
        for name, times in rounds.items():
            median = statistics.median(times)
            print(f"  {name:24} {median:9.1f} us  {median / ours:6.2f}")


if __name__ == "__main__":
    main(sys.argv[1:])
