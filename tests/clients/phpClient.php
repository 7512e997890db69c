<?php
// PHP's SoapClient against the service: phpClient.php URL SCENARIO CLUSTER. See clientsTest.py.
declare(strict_types=1);

[, $url, $scenario, $cluster] = $argv;
$client = new SoapClient("$url?wsdl", ['cache_wsdl' => WSDL_CACHE_NONE, 'exceptions' => true]);
// The bytes are base64 text themselves; the library encodes them once more.
$header = new SoapHeader('urn:san-api:service', 'HccApiHeader', [
    'xsdVersion' => ['version' => '2.3'],
    'userPass' => base64_encode('user:pass'),
]);

function call(string $operation, array $arguments): object
{
    global $client, $header;
    $received = [];
    $reply = $client->__soapCall($operation, [$arguments], null, $header, $received);
    $reply->header = $received['HccApiHeader'];
    return $reply;
}

function show(string $what, object $reply): void
{
    $result = $reply->return;
    printf("%s %d \"%s\" %d\n", $what, $result->catalogNumber, $result->defaultMsg,
           $result->resultCode);
    printf("header %s\n", $reply->header->xsdVersion->version);
}

function attach(string $volume): object
{
    global $cluster;
    return call('HccAttachVolume', ['hccId' => $cluster, 'hcVolumeId' => 'hcv-1',
                                    'sanId' => 'array', 'sanVolumeId' => $volume]);
}

if ($scenario === 'ping') {
    show('ping', call('Ping', []));
    exit(0);
}
show('join', call('AddHccToSan', [
    'sanId' => 'array', 'hccId' => $cluster, 'hccName' => 'Zürich 集群', 'hccKey' => 'key',
    'cfmIpAddresses' => [
        ['ipAddress' => ['type' => 'ipv4', 'ipv4Addr' => '10.0.0.5'], 'port' => 3260],
        ['ipAddress' => ['type' => 'dns', 'dnsAddr' => 'cfm.example.org'], 'port' => 3261],
    ]]));
$identities = attach('vol-1');
foreach (['orig', 'alias'] as $which) {
    $identity = $identities->{"{$which}ScsiInfo"};
    printf("attach %s %s %s\n", $which, $identity->deviceId, $identity->serialNumber);
}
try {
    attach('größe-集');
} catch (SoapFault $fault) {
    printf("refused %s \"%s\"\n", preg_replace('/.*:/', '', $fault->faultcode),
           $fault->faultstring);
}
show('detach', call('HccDetachVolume', ['hccId' => $cluster, 'sanId' => 'array',
                                        'sanVolumeId' => 'vol-1']));
show('leave', call('RemoveHccFromSan', ['sanId' => 'array', 'hccId' => $cluster]));
