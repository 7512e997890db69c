// node's soap library against the service: nodeClient.js URL SCENARIO CLUSTER. See clientsTest.py.
'use strict';
const soap = require('soap');

const [url, scenario, cluster] = process.argv.slice(2);

// Base64 text of the credentials, and that once more, since this library does not encode.
const base64 = (text) => Buffer.from(text).toString('base64');
const HEADER = {
  'ns1:HccApiHeader': {
    xsdVersion: { attributes: { version: '2.3' } },
    userPass: base64(base64('user:pass')),
  },
};

function show(what, [reply, , header]) {
  const result = reply.return;
  console.log(`${what} ${result.catalogNumber} "${result.defaultMsg || ''}" ${result.resultCode}`);
  console.log(`header ${header.HccApiHeader.xsdVersion.attributes.version}`);
}

function attach(client, volume) {
  return client.HccAttachVolumeAsync({
    hccId: cluster, hcVolumeId: 'hcv-1', sanId: 'array', sanVolumeId: volume,
  });
}

async function runCluster(client) {
  show('join', await client.AddHccToSanAsync({
    sanId: 'array', hccId: cluster, hccName: 'Zürich 集群', hccKey: 'key',
    cfmIpAddresses: [
      { ipAddress: { attributes: { type: 'ipv4' }, ipv4Addr: '10.0.0.5' }, port: 3260 },
      { ipAddress: { attributes: { type: 'dns' }, dnsAddr: 'cfm.example.org' }, port: 3261 },
    ],
  }));
  const [identities] = await attach(client, 'vol-1');
  for (const which of ['orig', 'alias']) {
    const identity = identities[`${which}ScsiInfo`];
    console.log(`attach ${which} ${identity.deviceId} ${identity.serialNumber}`);
  }
  try {
    await attach(client, 'größe-集');
  } catch (error) {
    const fault = error.root.Envelope.Body.Fault;
    console.log(`refused ${fault.faultcode.replace(/.*:/, '')} "${fault.faultstring}"`);
  }
  show('detach', await client.HccDetachVolumeAsync({
    hccId: cluster, sanId: 'array', sanVolumeId: 'vol-1',
  }));
  show('leave', await client.RemoveHccFromSanAsync({ sanId: 'array', hccId: cluster }));
}

async function main() {
  const client = await soap.createClientAsync(`${url}?wsdl`);
  client.addSoapHeader(HEADER);
  if (scenario === 'ping') {
    show('ping', await client.PingAsync({}));
  } else {
    await runCluster(client);
  }
}

main().catch((error) => {
  console.error(error.message);
  process.exitCode = 1;
});
