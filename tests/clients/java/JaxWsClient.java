import java.net.URL;
import java.nio.charset.StandardCharsets;
import java.util.Base64;
import java.util.List;
import java.util.function.BiConsumer;
import javax.xml.ws.Holder;
import javax.xml.ws.soap.SOAPFaultException;
import sanapi.*;

/** JAX-WS against the service: JaxWsClient URL SCENARIO CLUSTER. See clientsTest.py. */
public class JaxWsClient {
    private final SanApi service;
    private final String cluster;

    private JaxWsClient(String url, String cluster) throws Exception {
        this.service = new SanApiService(new URL(url + "?wsdl")).getSanApiPort();
        this.cluster = cluster;
    }

    private static Holder<HccApiHeader> header() {
        HccApiXsd version = new HccApiXsd();
        version.setVersion("2.3");
        HccApiHeader header = new HccApiHeader();
        header.setXsdVersion(version);
        // The bytes are base64 text themselves; the library encodes them once more.
        header.setUserPass(Base64.getEncoder().encode("user:pass".getBytes(StandardCharsets.UTF_8)));
        return new Holder<>(header);
    }

    private static void show(String what, ResultObject result, Holder<HccApiHeader> header) {
        System.out.printf("%s %d \"%s\" %d%n", what, result.getCatalogNumber(),
                result.getDefaultMsg(), result.getResultCode());
        System.out.printf("header %s%n", header.value.getXsdVersion().getVersion());
    }

    private static IpAddressPort address(InetAddressType type, BiConsumer<InetAddress, String> set,
            String text, int port) {
        InetAddress address = new InetAddress();
        address.setType(type);
        set.accept(address, text);
        IpAddressPort made = new IpAddressPort();
        made.setIpAddress(address);
        made.setPort(port);
        return made;
    }

    private void attach(String volume, Holder<ScsiInfo> orig, Holder<ScsiInfo> alias) {
        service.hccAttachVolume(cluster, "hcv-1", "array", volume, orig, alias, header());
    }

    private void ping() {
        Holder<HccApiHeader> header = header();
        show("ping", service.ping(header), header);
    }

    private void runCluster() {
        Holder<HccApiHeader> header = header();
        show("join", service.addHccToSan("array", cluster, "Zürich 集群", "key", List.of(
                address(InetAddressType.IPV_4, InetAddress::setIpv4Addr, "10.0.0.5", 3260),
                address(InetAddressType.DNS, InetAddress::setDnsAddr, "cfm.example.org", 3261)),
                header), header);
        Holder<ScsiInfo> orig = new Holder<>();
        Holder<ScsiInfo> alias = new Holder<>();
        attach("vol-1", orig, alias);
        System.out.printf("attach orig %s %s%n", orig.value.getDeviceId(),
                orig.value.getSerialNumber());
        System.out.printf("attach alias %s %s%n", alias.value.getDeviceId(),
                alias.value.getSerialNumber());
        try {
            attach("größe-集", orig, alias);
        } catch (SOAPFaultException error) {
            System.out.printf("refused %s \"%s\"%n",
                    error.getFault().getFaultCodeAsQName().getLocalPart(),
                    error.getFault().getFaultString());
        }
        header = header();
        show("detach", service.hccDetachVolume(cluster, "array", "vol-1", header), header);
        header = header();
        show("leave", service.removeHccFromSan("array", cluster, header), header);
    }

    public static void main(String[] arguments) throws Exception {
        JaxWsClient client = new JaxWsClient(arguments[0], arguments[2]);
        if (arguments[1].equals("ping")) {
            client.ping();
        } else {
            client.runCluster();
        }
    }
}
