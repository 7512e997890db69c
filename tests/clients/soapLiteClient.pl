#!/usr/bin/perl
# SOAP::Lite against the service: soapLiteClient.pl URL SCENARIO CLUSTER. See clientsTest.py.
# The library takes the address and the names of the parameters from the service description, but
# makes neither wrappers nor nested elements after its schema; those are written out here.
use strict;
use warnings;
use utf8;
use open qw(:std :encoding(UTF-8));

use MIME::Base64 qw(encode_base64);
use SOAP::Lite;

my ($url, $scenario, $cluster) = @ARGV;
my $namespace = 'urn:san-api:service';
my $described = SOAP::Schema->schema_url("$url?wsdl")->parse;
my ($operations) = values %{$described->services};
my $address = $operations->{Ping}{endpoint}->value;

my $soap = SOAP::Lite->proxy($address)->ns($namespace, 'san')->autotype(0)->readable(0)
    ->on_action(sub { '' })->on_fault(\&give_up);

# A reply that is no fault, or none at all, comes as a text.
sub give_up {
    my ($client, $reply) = @_;
    die $client->transport->status, "\n" unless ref $reply;
    die sprintf("%s \"%s\"\n", $reply->faultcode =~ s/.*://r, $reply->faultstring);
}

sub element { return SOAP::Data->name($_[0])->value($_[1])->type(''); }
sub parent { my $name = shift; return SOAP::Data->name($name)->value(\SOAP::Data->value(@_)); }

sub header {
    # Base64 text of the credentials, and that once more, since untyped values are not encoded.
    my $credentials = encode_base64(encode_base64('user:pass', ''), '');
    return SOAP::Header->name('san:HccApiHeader')->value(
        \SOAP::Data->value(SOAP::Data->name('xsdVersion')->attr({version => '2.3'})->value(''),
                           element('userPass', $credentials)));
}

sub call {
    my ($operation, @parameters) = @_;
    return $soap->call(SOAP::Data->name("san:$operation"), @parameters, header());
}

sub show {
    my ($what, $reply) = @_;
    my $result = $reply->valueof('//return') or die "$what: no result\n";
    printf "%s %d \"%s\" %d\n", $what, $result->{catalogNumber}, $result->{defaultMsg} // '',
        $result->{resultCode};
    printf "header %s\n", $reply->dataof('//HccApiHeader/xsdVersion')->attr->{version};
}

sub attach {
    my ($volume) = @_;
    return call('HccAttachVolume', element(hccId => $cluster), element(hcVolumeId => 'hcv-1'),
                element(sanId => 'array'), element(sanVolumeId => $volume));
}

sub address {
    my ($type, $child, $text, $number) = @_;
    my $inet = parent('ipAddress', element($child => $text))->attr({type => $type});
    return parent('cfmIpAddresses', $inet, element(port => $number));
}

if ($scenario eq 'ping') {
    show('ping', call('Ping'));
    exit 0;
}
show('join', call('AddHccToSan', element(sanId => 'array'), element(hccId => $cluster),
                  element(hccName => 'Zürich 集群'), element(hccKey => 'key'),
                  address('ipv4', 'ipv4Addr', '10.0.0.5', 3260),
                  address('dns', 'dnsAddr', 'cfm.example.org', 3261)));
my $identities = attach('vol-1');
for my $which ('orig', 'alias') {
    my $identity = $identities->valueof("//${which}ScsiInfo");
    printf "attach %s %s %s\n", $which, $identity->{deviceId}, $identity->{serialNumber};
}
eval { attach('größe-集') };
print "refused $@" if $@;
show('detach', call('HccDetachVolume', element(hccId => $cluster), element(sanId => 'array'),
                    element(sanVolumeId => 'vol-1')));
show('leave', call('RemoveHccFromSan', element(sanId => 'array'), element(hccId => $cluster)));
