<?php
// The bare service in PHP's SoapServer: for "php -S ADDRESS:PORT soapServer.php".
class Service
{
    public function HccApiHeader($header)
    {
    }

    public function Ping()
    {
        openlog('SANService', LOG_CONS, LOG_USER);
        syslog(LOG_WARNING, 'level(4) category(SANService) message(Validating soap header)');
        syslog(LOG_WARNING, 'level(4) category(SANService) message(Serving Ping request)');
        $size = (int) getenv('BENCH_REQUEST_BYTES');
        $peer = stream_socket_client('tcp://127.0.0.1:' . getenv('BENCH_PEER_PORT'));
        fwrite($peer, pack('N', $size - 4) . str_repeat('x', $size - 4));
        stream_get_contents($peer, (int) getenv('BENCH_REPLY_BYTES'));
        fclose($peer);
        closelog();
        return ['catalogNumber' => 0, 'defaultMsg' => '', 'resultCode' => 0];
    }
}

$server = new SoapServer(null, ['uri' => 'urn:san-api:service']);
$server->setClass('Service');
$server->handle();
